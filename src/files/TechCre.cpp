#include "files/TechCre.h"

#include "core/FormTexts.h"
#include "files/ShellLaunch.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QVBoxLayout>

TechCre::TechCre(const MessageCatalogue &messages, Launcher &launcher, Prompts &prompts, QWidget *parent)
    : QDialog(parent), m_messages(messages), m_launcher(launcher), m_prompts(prompts)
{
    setObjectName(QStringLiteral("TechCre"));
    setModal(true);

    ImgIcon = new QLabel(this);
    ImgIcon->setPixmap(QApplication::windowIcon().pixmap(64, 64));
    LabTitle = new QLabel(QStringLiteral("Vimora"), this);
    QFont titleFont = LabTitle->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 2);
    titleFont.setBold(true);
    LabTitle->setFont(titleFont);
    LabVers = new QLabel(this);
    LabVers->setObjectName(QStringLiteral("LabVers"));
    LabHome = new QLabel(this);
    LabHome->setObjectName(QStringLiteral("LabHome"));
    LabInt = new QLabel(this);
    LabInt->setObjectName(QStringLiteral("LabInt"));
    LabInt->setText(QStringLiteral("<u>") + ShellLaunch::HomePage + QStringLiteral("</u>"));
    for (QLabel *link : {LabHome, LabInt}) {
        link->setCursor(Qt::PointingHandCursor);
        link->setForegroundRole(QPalette::Link);
        link->installEventFilter(this);
    }
    CmdOk = new QPushButton(this);
    CmdOk->setObjectName(QStringLiteral("CmdOk"));
    CmdOk->setDefault(true);

    auto *text = new QVBoxLayout;
    text->addWidget(LabTitle);
    text->addWidget(LabVers);
    text->addSpacing(12);
    text->addWidget(LabHome);
    text->addWidget(LabInt);
    auto *top = new QHBoxLayout;
    top->addWidget(ImgIcon, 0, Qt::AlignTop);
    top->addSpacing(16);
    top->addLayout(text);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(CmdOk, 0, Qt::AlignRight);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    FormTexts::ApplyCaptions(this, messages);
    FormTexts::ApplyTooltips(this, messages, true);
    LabVers->setText(LabVers->text() + QLatin1Char(' ') + versionNumber(QStringLiteral(VIMORA_VERSION)));
    connect(CmdOk, &QPushButton::clicked, this, &QDialog::accept);
}

QString TechCre::versionNumber(const QString &fullVersion)
{
    return fullVersion.section(QLatin1Char('.'), 0, 1);
}

void TechCre::LabHome_Click()
{
    ShellLaunch::OpenWithShell(QString(), m_launcher, m_prompts, m_messages);
}

bool TechCre::eventFilter(QObject *watched, QEvent *event)
{
    if ((watched == LabHome || watched == LabInt) && event->type() == QEvent::MouseButtonRelease
        && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
        LabHome_Click();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}
