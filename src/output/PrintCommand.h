#pragma once

#include <QImage>
#include <QString>

#include <functional>

class Launcher;
class Prompts;
class QPrinter;
class QWidget;

// The print dialog, then the copies: slides by their own program, anything
// else drawn by Vimora. Every window's print command goes through here.
namespace PrintCommand {

enum class Outcome { Printed, Cancelled, Failed, NoSlidesProgram };

struct Result {
    Outcome outcome = Outcome::Cancelled;
    QString dialogError; // a dialog that could not be shown says why
};

// picture is asked for only once the dialog is confirmed (a movie frame is
// taken then); slidesPath, when set, is printed by its own program instead.
Result run(Prompts &prompts, Launcher &launcher, QPrinter &printer, QWidget *owner,
           const std::function<QImage()> &picture, const QString &slidesPath = {});

} // namespace PrintCommand
