#include "output/PrintCommand.h"

#include "output/PictureOutput.h"
#include "output/clsCommonDialog.h"

namespace PrintCommand {

namespace {
// Copies and collation by the driver where it can; no "selection" choice.
constexpr std::int32_t PrintFlags = clsCommonDialog::UseDriverCopies | clsCommonDialog::NoSelection;
} // namespace

Result run(Prompts &prompts, Launcher &launcher, QPrinter &printer, QWidget *owner,
           const std::function<QImage()> &picture, const QString &slidesPath)
{
    clsCommonDialog dialog;
    dialog.setParent(owner);
    dialog.CancelError = true;
    dialog.Flags = PrintFlags;
    if (!dialog.ShowPrinter(prompts, printer))
        return {Outcome::Cancelled, dialog.errorText()};
    const int copies = dialog.Copies();
    if (!slidesPath.isEmpty()) {
        for (int copy = 0; copy < copies; ++copy)
            if (!PictureOutput::printWithOwnProgram(launcher, slidesPath))
                return {Outcome::NoSlidesProgram, {}};
        return {Outcome::Printed, {}};
    }
    return {PictureOutput::printPicture(printer, picture(), copies) ? Outcome::Printed : Outcome::Failed, {}};
}

} // namespace PrintCommand
