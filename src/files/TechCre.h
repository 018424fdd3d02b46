#pragma once

#include <QDialog>

class Launcher;
class MessageCatalogue;
class Prompts;
class QLabel;
class QPushButton;

// The About box: name, version and the home page link.
class TechCre : public QDialog {
    Q_OBJECT
public:
    TechCre(const MessageCatalogue &messages, Launcher &launcher, Prompts &prompts, QWidget *parent = nullptr);

    // "2.1" of "2.1.17": the About box shows major and minor.
    static QString versionNumber(const QString &fullVersion);

    QLabel *ImgIcon;
    QLabel *LabTitle;
    QLabel *LabVers;
    QLabel *LabHome;
    QLabel *LabInt;
    QPushButton *CmdOk;

    void LabHome_Click();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const MessageCatalogue &m_messages;
    Launcher &m_launcher;
    Prompts &m_prompts;
};
