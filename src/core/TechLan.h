#pragma once

#include <QDialog>

class QPushButton;

// The language chooser shown at the first start and on F2.
class TechLan : public QDialog {
    Q_OBJECT
public:
    explicit TechLan(const QString &currentCode, QWidget *parent = nullptr);

    // "EN", "IT", or "" when closed without a choice.
    QString chosenCode() const { return m_chosen; }

    QPushButton *cmdEN;
    QPushButton *cmdIT;

protected:
    void showEvent(QShowEvent *event) override;

private:
    void choose(const QString &code);

    QString m_current;
    QString m_chosen;
};
