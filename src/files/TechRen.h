#pragma once

#include <QDialog>
#include <QRect>
#include <QString>

class MessageCatalogue;
class QLineEdit;

// The rename box: one line over the name being renamed. Enter keeps the
// trimmed text unless it is unchanged; Escape keeps nothing.
class TechRen : public QDialog {
    Q_OBJECT
public:
    TechRen(const QString &name, const MessageCatalogue &messages, QWidget *parent = nullptr);

    // The new name, or "" after Escape or an unchanged name.
    QString RenameText() const { return m_renameText; }

    QLineEdit *txtFile;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QString m_original;
    QString m_renameText;
};

// Shows the box modally over `where` (global coordinates, one text line
// high) and returns its RenameText.
QString AskNewName(QWidget *parent, const QRect &where, const QString &name, const MessageCatalogue &messages);

// Where a rename goes: a text with a separator is a full new path,
// anything else a new name in the old file's folder.
QString RenameTargetOf(const QString &oldPath, const QString &renameText);
