#include "files/TechRen.h"

#include "core/MessageCatalogue.h"
#include "files/FilePaths.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QVBoxLayout>

TechRen::TechRen(const QString &name, const MessageCatalogue &messages, QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint), m_original(name)
{
    setObjectName(QStringLiteral("TechRen"));
    setModal(true);
    txtFile = new QLineEdit(name, this);
    txtFile->setObjectName(QStringLiteral("txtFile"));
    txtFile->selectAll();
    txtFile->setToolTip(QLatin1Char(' ')
                        + messages.GetMsg(10902, QStringLiteral("Type new name and press Enter / Escape to exit"))
                        + QLatin1Char(' '));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(txtFile);
}

void TechRen::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        const QString typed = txtFile->text().trimmed();
        m_renameText = typed == m_original ? QString() : typed;
        accept();
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        m_renameText.clear();
        reject();
        return;
    }
    QDialog::keyPressEvent(event);
}

QString AskNewName(QWidget *parent, const QRect &where, const QString &name, const MessageCatalogue &messages)
{
    TechRen box(name, messages, parent);
    box.setGeometry(where);
    box.exec();
    return box.RenameText();
}

QString RenameTargetOf(const QString &oldPath, const QString &renameText)
{
    // A backslash separates folders here as "/" does: a name with either is a path.
    if (renameText.contains(QLatin1Char('/')) || renameText.contains(QLatin1Char('\\')))
        return QString(renameText).replace(QLatin1Char('\\'), QLatin1Char('/'));
    return PathInFolder(QFileInfo(oldPath).path(), renameText);
}
