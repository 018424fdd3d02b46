#pragma once

#include <QDialog>

class MessageCatalogue;
class QLabel;
class QLineEdit;
class QPushButton;

// The information panel of one file: name, full path, type with its icon,
// detail, size and date.
class frmMessage : public QDialog {
    Q_OBJECT
public:
    explicit frmMessage(QWidget *parent = nullptr);

    QLabel *LabTit;
    QLabel *labNome;
    QLineEdit *txtFile;
    QLabel *LabTipo;
    QLabel *LabMsg;
    QLabel *ImgTyp;
    QPushButton *CmdOk;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

// Fills the panel for the path and opens it (window-modal, returns at
// once); `finished` tells when it is closed. typeCode as the display uses.
frmMessage *ShowFileInfo(QWidget *parent, const QString &programFolder, const MessageCatalogue &messages,
                         const QString &path, const QString &detail, const QString &typeCode);
