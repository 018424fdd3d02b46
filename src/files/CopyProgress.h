#pragma once

#include <QString>

#include <functional>

class QWidget;

// A progress window for the copies of one command: it appears only for
// files from LargeCopyBytes on, and its Cancel stops the copy.
std::function<bool(qint64 done, qint64 total)> copyProgressWindow(QWidget *parent, const QString &label,
                                                                const QString &cancelText);
