#include "core/TechLan.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

TechLan::TechLan(const QString &currentCode, QWidget *parent)
    : QDialog(parent), m_current(currentCode)
{
    setObjectName(QStringLiteral("TechLan"));
    setWindowTitle(QStringLiteral(" Vimora"));
    setModal(true);

    // Both languages at once: the user may not read the current one.
    auto *label = new QLabel(QStringLiteral("Choose your language\nScegli la lingua"), this);
    label->setAlignment(Qt::AlignCenter);
    cmdEN = new QPushButton(QStringLiteral("English"), this);
    cmdEN->setObjectName(QStringLiteral("cmdEN"));
    cmdIT = new QPushButton(QStringLiteral("Italiano"), this);
    cmdIT->setObjectName(QStringLiteral("cmdIT"));
    for (QPushButton *button : {cmdEN, cmdIT}) {
        button->setMinimumSize(120, 40);
        button->setAutoDefault(false);
    }

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdEN);
    buttons->addWidget(cmdIT);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addLayout(buttons);

    connect(cmdEN, &QPushButton::clicked, this, [this] { choose(QStringLiteral("EN")); });
    connect(cmdIT, &QPushButton::clicked, this, [this] { choose(QStringLiteral("IT")); });
}

void TechLan::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (m_current == u"EN")
        cmdEN->setFocus();
    else if (m_current == u"IT")
        cmdIT->setFocus();
}

void TechLan::choose(const QString &code)
{
    m_chosen = code;
    accept();
}
