#include "system/TechLink.h"

#include "core/AppState.h"
#include "core/FormTexts.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>

TechLink::TechLink(AppState &state, FileAssociations::Places places, std::function<void()> showHelp, QWidget *parent)
    : QDialog(parent), m_state(state), m_places(std::move(places)), m_showHelp(std::move(showHelp))
{
    setObjectName(QStringLiteral("TechLink"));
    setWindowTitle(QStringLiteral(" Vimora"));
    // Modal to the main window only, so the help window stays usable.
    setWindowModality(Qt::WindowModal);

    Frame1 = new QGroupBox(this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    auto *grid = new QGridLayout(Frame1);
    int row = 0;
    for (const AssociationGroups::Group &group : AssociationGroups::groups()) {
        QStringList codes;
        for (const AssociationGroups::Extension &extension : group.extensions)
            codes.append(extension.code);
        auto *box = new QCheckBox(codes.join(QStringLiteral(" / ")), Frame1);
        box->setObjectName(group.checkBox);
        checkBoxes.insert(group.key, box);
        // Pictures in the first column, movies in the second.
        const bool movie = row >= 7;
        grid->addWidget(box, movie ? row - 7 : row, movie ? 1 : 0);
        ++row;
        connect(box, &QCheckBox::clicked, this, [this] { CmdOk->setEnabled(true); });
    }

    CmdOk = new QPushButton(this);
    CmdOk->setObjectName(QStringLiteral("CmdOk"));
    CmdOk->setDefault(true);
    CmdCancel = new QPushButton(this);
    CmdCancel->setObjectName(QStringLiteral("CmdCancel"));
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(CmdOk, QDialogButtonBox::AcceptRole);
    buttons->addButton(CmdCancel, QDialogButtonBox::RejectRole);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(Frame1);
    layout->addWidget(buttons);

    connect(CmdOk, &QPushButton::clicked, this, &TechLink::CmdOk_Click);
    connect(CmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    Form_Load();
}

void TechLink::Form_Load()
{
    FormTexts::ApplyCaptions(this, m_state.messages);
    CmdOk->setEnabled(false);
    for (auto it = checkBoxes.begin(); it != checkBoxes.end(); ++it)
        it.value()->setChecked(m_state.LinkedTypes.contains(it.key()));
}

void TechLink::CmdOk_Click()
{
    QSet<QString> checked;
    for (auto it = checkBoxes.begin(); it != checkBoxes.end(); ++it)
        if (it.value()->isChecked())
            checked.insert(it.key());
    setCursor(Qt::WaitCursor);
    m_state.LinkedTypes =
        FileAssociations::applyChoices(checked, m_state.LinkedTypes, m_places, m_state.settings, m_state.messages);
    unsetCursor();
    accept();
}

void TechLink::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F1 && m_showHelp) {
        m_showHelp();
        return;
    }
    QDialog::keyPressEvent(event);
}
