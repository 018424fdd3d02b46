#include "viewer/frmMain.h"

#include "core/AppState.h"
#include "viewer/StartupRules.h"
#include "viewer/ViewRules.h"

#include <QComboBox>
#include <QLabel>

QString frmMain::showBeforeListingEnds(const QString &name)
{
    if (!StartupRules::showsBeforeListingEnds(m_state.CurrentFolder, name, m_state.TypeFilterCode,
                                              typeFilterText()))
        return {};
    // A list of the one file meanwhile, so that it is found by name.
    m_state.FileNames = QStringList{name};
    Mostra_Image(false, name);
    return m_state.CurrentFileName == name ? name : QString();
}

bool frmMain::settleShownEarly(const QString &name)
{
    const qsizetype index = m_state.FileNames.indexOf(name);
    if (index < 0 || m_state.CurrentFileName != name)
        return false;
    m_state.CurrentIndex = int(index);
    updateNavigationButtons();
    LabNum->setText(ViewRules::positionText(m_state.CurrentIndex, m_state.fileUpperBound() + 1));
    showStatusLabels();
    layoutStatusRow();
    prefetchNeighbours();
    return true;
}
