#include "files/HelpWindow.h"

#include "core/MessageCatalogue.h"
#include "platform/Launcher.h"

#include <QFileInfo>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

HelpWindow::HelpWindow(Launcher &launcher, const MessageCatalogue &messages, QWidget *parent)
    : QWidget(parent, Qt::Window), m_launcher(launcher), m_messages(messages)
{
    setObjectName(QStringLiteral("HelpWindow"));
    txtHelp = new QTextBrowser(this);
    txtHelp->setObjectName(QStringLiteral("txtHelp"));
    txtHelp->setOpenLinks(false);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(txtHelp);
    resize(760, 640);
    connect(txtHelp, &QTextBrowser::anchorClicked, this, &HelpWindow::followLink);
    connect(txtHelp, &QTextBrowser::sourceChanged, this, [this] {
        setWindowTitle(QStringLiteral("Vimora - ") + txtHelp->documentTitle());
    });
}

void HelpWindow::showContents(const QString &helpFilePath)
{
    if (QFileInfo(helpFilePath).isFile()) {
        txtHelp->setSource(QUrl::fromLocalFile(helpFilePath));
        txtHelp->scrollToAnchor(QStringLiteral("contents"));
    } else {
        // A missing help file is reported in the help viewer, as its own page.
        txtHelp->setHtml(QStringLiteral("<p>") + m_messages.GetMsg(1122, QStringLiteral("The help file was not found:"))
                         + QStringLiteral("</p><p>") + helpFilePath.toHtmlEscaped() + QStringLiteral("</p>"));
        setWindowTitle(QStringLiteral("Vimora"));
    }
    show();
    raise();
    activateWindow();
}

void HelpWindow::followLink(const QUrl &url)
{
    const QUrl resolved = txtHelp->source().resolved(url);
    if (resolved.isLocalFile() || resolved.scheme().isEmpty())
        txtHelp->setSource(resolved);
    else
        m_launcher.openWithDefault(resolved.toString());
}
