#include "files/CopyProgress.h"

#include "files/FileCopy.h"

#include <QCoreApplication>
#include <QProgressDialog>

#include <memory>

std::function<bool(qint64, qint64)> copyProgressWindow(QWidget *parent, const QString &label,
                                                                const QString &cancelText)
{
    auto window = std::make_shared<std::unique_ptr<QProgressDialog>>();
    return [window, parent, label, cancelText](qint64 done, qint64 total) {
        if (total < LargeCopyBytes)
            return true;
        if (!*window) {
            *window = std::make_unique<QProgressDialog>(label, QString(), 0, 1000, parent);
            (*window)->setWindowModality(Qt::WindowModal);
            (*window)->setMinimumDuration(300);
            (*window)->setAutoReset(false);
            (*window)->setAutoClose(false);
            (*window)->setCancelButtonText(cancelText);
        }
        QProgressDialog &dialog = **window;
        dialog.setValue(int(done * 1000 / total));
        QCoreApplication::processEvents();
        const bool go = !dialog.wasCanceled();
        if (done >= total || !go) {
            dialog.reset(); // ready for the next file of the command
            dialog.hide();
        }
        return go;
    };
}
