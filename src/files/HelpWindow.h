#pragma once

#include <QWidget>

class Launcher;
class MessageCatalogue;
class QTextBrowser;

// Vimora's own help viewer: the HTML help page of the current language.
// Links to other pages of the data folder open here; web links go to the
// desktop's browser.
class HelpWindow : public QWidget {
    Q_OBJECT
public:
    HelpWindow(Launcher &launcher, const MessageCatalogue &messages, QWidget *parent = nullptr);

    // Shows the contents of the help file, or says that it is missing.
    void showContents(const QString &helpFilePath);

    QTextBrowser *txtHelp;

private:
    void followLink(const QUrl &url);

    Launcher &m_launcher;
    const MessageCatalogue &m_messages;
};
