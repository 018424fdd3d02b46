#pragma once

#include "system/FileAssociations.h"

#include <QDialog>
#include <QMap>

#include <functional>

struct AppState;
class QCheckBox;
class QGroupBox;
class QPushButton;

// "Set as default player for file types:": one box per group of types.
class TechLink : public QDialog {
    Q_OBJECT
public:
    TechLink(AppState &state, FileAssociations::Places places, std::function<void()> showHelp,
             QWidget *parent = nullptr);

    QGroupBox *Frame1;
    QMap<QString, QCheckBox *> checkBoxes; // by group key
    QPushButton *CmdOk;
    QPushButton *CmdCancel;

    void Form_Load();
    void CmdOk_Click();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    AppState &m_state;
    FileAssociations::Places m_places;
    std::function<void()> m_showHelp;
};
