#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "viewer/StartupRules.h"
#include "viewer/ViewRules.h"

#include <QComboBox>
#include <QLabel>

QString frmMain::showBeforeListingEnds(const QString &name)
{
    if (!StartupRules::showsBeforeListingEnds(m_context.CurrentFolder(), name, m_context.TypeFilterCode(),
                                              typeFilterText()))
        return {};
    // A list of the one file meanwhile, so that it is found by name.
    m_context.setList({name}, m_context.FolderSummaryText());
    Mostra_Image(false, name);
    return m_context.CurrentFileName() == name ? name : QString();
}

bool frmMain::settleShownEarly(const QString &name)
{
    const qsizetype index = m_context.FileNames().indexOf(name);
    if (index < 0 || m_context.CurrentFileName() != name)
        return false;
    m_context.setCurrentIndex(int(index));
    updateNavigationButtons();
    LabNum->setText(ViewRules::positionText(m_context.CurrentIndex(), m_context.fileUpperBound() + 1));
    showStatusLabels();
    layoutStatusRow();
    prefetchNeighbours();
    return true;
}
