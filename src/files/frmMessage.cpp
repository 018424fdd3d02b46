#include "files/frmMessage.h"

#include "core/MessageCatalogue.h"
#include "files/FileInfoText.h"
#include "core/FileSizeText.h"
#include "platform/DataFolder.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

frmMessage::frmMessage(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmMessage"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto label = [this](const char *name) {
        auto *made = new QLabel(this);
        made->setObjectName(QLatin1String(name));
        return made;
    };
    LabTit = label("LabTit");
    QFont bold = LabTit->font();
    bold.setBold(true);
    LabTit->setFont(bold);
    labNome = label("labNome");
    labNome->setFont(bold);
    labNome->setTextFormat(Qt::PlainText);
    txtFile = new QLineEdit(this);
    txtFile->setObjectName(QStringLiteral("txtFile"));
    txtFile->setReadOnly(true);
    txtFile->installEventFilter(this);
    LabTipo = label("LabTipo");
    LabMsg = label("LabMsg");
    LabMsg->setTextFormat(Qt::PlainText);
    ImgTyp = label("ImgTyp");
    ImgTyp->setFixedSize(48, 48);
    ImgTyp->setAlignment(Qt::AlignCenter);
    CmdOk = new QPushButton(QStringLiteral("OK"), this);
    CmdOk->setObjectName(QStringLiteral("CmdOk"));
    CmdOk->setDefault(true);
    connect(CmdOk, &QPushButton::clicked, this, &QDialog::accept);

    auto *grid = new QGridLayout(this);
    grid->addWidget(LabTit, 0, 0, 1, 2);
    grid->addWidget(ImgTyp, 1, 0, 2, 1);
    grid->addWidget(labNome, 1, 1);
    grid->addWidget(LabTipo, 2, 1);
    grid->addWidget(txtFile, 3, 0, 1, 2);
    grid->addWidget(LabMsg, 4, 0, 1, 2);
    grid->addWidget(CmdOk, 5, 1, Qt::AlignRight);
    setMinimumWidth(360);
}

bool frmMessage::eventFilter(QObject *watched, QEvent *event)
{
    // A double click takes the whole path, ready for copying.
    if (watched == txtFile && event->type() == QEvent::MouseButtonDblClick) {
        txtFile->selectAll();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

frmMessage *ShowFileInfo(QWidget *parent, const QString &programFolder, const MessageCatalogue &messages,
                         const QString &path, const QString &detail, const QString &typeCode)
{
    const QFileInfo info(path);
    auto *panel = new frmMessage(parent);
    panel->setWindowTitle(messages.GetMsg(840, QStringLiteral("Properties")));
    panel->LabTit->setText(messages.GetMsg(840, QStringLiteral("Properties")));
    panel->labNome->setText(info.fileName());
    panel->CmdOk->setText(messages.GetMsg(105, QStringLiteral("&OK")));
    panel->txtFile->setText(path);
    panel->txtFile->setCursorPosition(0);

    const FileInfoText::TypeLook look = FileInfoText::lookOf(typeCode, messages);
    panel->LabTipo->setText(look.description);
    const QIcon icon = look.iconIsFile ? QIcon(path)
                                       : QIcon::fromTheme(look.iconName,
                                                          DataFolder::themedIcon(programFolder, look.fallbackIcon));
    panel->ImgTyp->setPixmap(icon.pixmap(32, 32));
    panel->LabMsg->setText(
        FileInfoText::detailText(detail, FileSizeText(path, messages), info.lastModified()));
    panel->open();
    QCoreApplication::processEvents();
    return panel;
}
