#include "core/FormTexts.h"

#include "core/MessageCatalogue.h"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>
#include <QWidget>

namespace FormTexts {

namespace {

const QList<Entry> MainCaptions{
    {"Option1_0", 304, "Fit window"},
    {"Option1_1", 305, "Full size"},
    {"ChkCicle", 306, "Cycle"},
    {"ChkAuto", 314, "Play Movie"},
    {"mnuFullScreen", 829, "Full Screen"},
    {"SFDelete", 820, "&Delete"},
    {"SFInfo", 821, "File info"},
    {"SFRename", 811, "Rename"},
    {"mnuUndo", 20624, "Undo"},
    {"mnuAdd", 822, "Add to list"},
    {"mnuRemove", 819, "Remove from list"},
    {"mnuGrab", 830, "Grab Image"},
    {"mnuMove", 831, "Move"},
    {"mnuSave", 823, "Save as"},
    {"mnuClipboard", 826, "Copy"},
    {"mnuPrint", 313, "Print"},
    {"mnuWall", 827, "&Wallpaper"},
    {"mnuRemoveWall", 828, "Restore"},
    {"mnuFull", 824, "Full Size"},
    {"mnufit", 825, "Fit window"},
    {"mnuPlay", 701, "Play/Pause"},
    {"mnuStop", 702, "Stop"},
    {"mnuGlobal", 10111, "Global Operations"},
    {"mnuDirOpen", 809, "Show"},
    {"mnuDirExpl", 810, "Explore"},
    {"mnuCropSave", 10131, "Save Area as"},
    {"mnuCropClip", 10132, "Copy selected Area to clipboard"},
    {"mnuCropPrint", 10133, "Print  Area"},
    {"mnuShellOpen", 10134, "Shell Open"},
    {"mnuShellEdit", 10135, "Shell Edit"},
};

const QList<Entry> MainTooltips{
    {"CboURL", 10101, "Current Path of files"},
    {"cmdIndex", 10103, "Folder preview by thumbnails"},
    {"CboType", 10104, "Files type"},
    {"ChkCicle", 10105, "Enable/Disable file loop"},
    {"txtTime", 10106, "Show time"},
    {"cmdBack", 10107, "Previous picture"},
    {"cmdNext", 10108, "Next picture"},
    {"cmdSave", 10109, "Make a Copy of current file"},
    {"cmdAdd", 10110, "Add to list"},
    {"cmdList", 10111, "Global Operations"},
    {"cmdAbout", 10112, "Information"},
    {"Option1_0", 10113, "Fit picture size to window"},
    {"Option1_1", 10114, "Full-sized picture"},
    {"cmdClip", 10115, "Copies this image to clipboard"},
    {"cmdLink", 10116, "Set Viewer"},
    {"cmdPrint", 10117, "Print image"},
    {"cmdGrab", 10118, "Grab current image to a file"},
    {"cmdClear", 10119, "Clear path box"},
    {"cmdRitaglia", 10129, "Crop area"},
    {"cmdHelp", 350, "Help"},
    {"cmdRefr", 10203, "Refresh"},
};

// Controls that have neither caption nor tooltip still need a name that a
// screen reader can say.
const QList<Entry> MainAccessibleNames{
    {"Drive1", 20001, "Drives"},
    {"Dir1", 20002, "Folders"},
    {"HScroll1", 20003, "Slideshow interval"},
    {"chkAnim", 20004, "Animate GIF pictures"},
    {"ImgEgg", 20005, "Picture"},
    {"MediaPlayer1", 20006, "Movie"},
    {"cmdUp", 20007, "Parent folder"},
    {"cmdExpand", 20008, "Zoom +"},
    {"cmdReduce", 20009, "Zoom -"},
};

const QList<Entry> FullCaptions{
    {"mnuNormal", 703, "Restore"},
    {"mnuShellOpen", 10134, "Shell Open"},
    {"mnuShellEdit", 10135, "Shell Edit"},
    {"mnuPlay", 701, "Play/Pause"},
    {"mnuStop", 702, "Stop"},
    {"mnufit", 825, "Fit window"},
    {"mnuFull", 824, "Full Size"},
    {"mnuAdd", 822, "Add to list"},
    {"mnuRemove", 819, "Remove from list"},
    {"mnuPrint", 313, "Print"},
    {"mnuSave", 823, "Save as"},
    {"mnuWall", 827, "&Wallpaper"},
    {"mnuRemoveWall", 828, "Restore"},
};

const QList<Entry> IndexCaptions{
    {"LabLoad", 601, "Loading ..."},
    {"mnuOpen", 809, "Show"},
    {"mnuPlay", 701, "Play/Pause"},
    {"mnuStop", 702, "Stop"},
    {"mnuSave", 823, "Save as"},
    {"mnuPrint", 313, "Print"},
    {"mnuClipboard", 826, "Copy"},
    {"mnuWall", 827, "&Wallpaper"},
    {"mnuRemoveWall", 828, "Restore"},
    {"mnuMove", 831, "Move"},
    {"mnuAdd", 822, "Add to list"},
    {"mnuRemove", 819, "Remove from list"},
    {"mnuGlobal", 10111, "Global Operations"},
    {"SFRename", 811, "Rename"},
    {"SFDelete", 820, "&Delete"},
    {"mnuUndo", 20624, "Undo"},
    {"SFInfo", 821, "File info"},
    {"mnuShellOpen", 10134, "Shell Open"},
    {"mnuShellEdit", 10135, "Shell Edit"},
};

const QList<Entry> IndexTooltips{
    {"cmdBack", 10201, "Previous page"},
    {"cmdNext", 10202, "Next page"},
    {"cmdRefr", 10203, "Refresh"},
    {"cmdPlay", 10204, "Play all movies"},
    {"cmdPause", 10205, "Pause all movies"},
    {"cmdStop", 10206, "Stop all movies"},
    {"cmdVol", 10207, "Volume"},
    {"cmdDir", 810, "Explore"},
};

const QList<Entry> ListCaptions{
    {"cmdSave", 823, "Copy"},
    {"cmdMove", 831, "Move"},
    {"cmdRemove", 372, "Remove"},
    {"cmdDel", 379, "Delete"},
    {"cmdAll", 373, "Clear List"},
    {"mnuSave", 823, "Copy to .."},
    {"mnuMove", 831, "Move to .."},
    {"mnuOpen", 809, "Show"},
    {"SFInfo", 821, "Properties"},
    {"mnuRename", 811, "Rename"},
    {"mnuDelete", 820, "Delete"},
    {"mnuUndo", 20624, "Undo"},
    // favourites window: title, select-all box and the menu's list commands
    {"", 10111, "Global Operations"},
    {"Check1", 20622, "Select all"},
    {"mnuRemove", 819, "Remove from list"},
    {"mnuClear", 373, "Clear List"},
};

const QList<Entry> ListTooltips{
    {"cmdRemove", 10302, "Remove selected items from list"},
    {"cmdAll", 10303, "Clear list"},
    {"cmdSave", 10304, "Copy selected files .."},
    {"cmdMove", 10305, "Move selected files .."},
    {"cmdDel", 10306, "Delete selected files"},
};

const QList<Entry> AboutCaptions{
    {"", 1901, "About"},
    {"LabVers", 903, "Version"},
    {"LabHome", 17, "Visit the Vimora Home Page"},
    {"CmdOk", 602, "&Exit"},
};

const QList<Entry> LinkCaptions{
    {"Frame1", 402, "Set as default player for file types:"},
    {"CmdOk", 105, "&OK"},
    {"CmdCancel", 104, "&Cancel"},
};

QString withoutAccelerator(QString text)
{
    return text.remove(QRegularExpression(QStringLiteral("&(?!&)")));
}

QObject *findControl(QWidget *form, const char *name)
{
    if (!*name)
        return form;
    return form->findChild<QObject *>(QLatin1String(name));
}

void setCaption(QObject *control, QWidget *form, const QString &text)
{
    if (control == form)
        form->setWindowTitle(text);
    else if (auto *button = qobject_cast<QAbstractButton *>(control))
        button->setText(text);
    else if (auto *label = qobject_cast<QLabel *>(control))
        label->setText(text);
    else if (auto *group = qobject_cast<QGroupBox *>(control))
        group->setTitle(text);
    else if (auto *menu = qobject_cast<QMenu *>(control))
        menu->setTitle(text);
    else if (auto *action = qobject_cast<QAction *>(control))
        action->setText(text);
    // A label is read by its own text, whatever the program adds to it later.
    if (auto *widget = qobject_cast<QWidget *>(control); widget && widget != form && !qobject_cast<QLabel *>(control))
        widget->setAccessibleName(withoutAccelerator(text));
}

bool hasCaption(QObject *control)
{
    if (auto *button = qobject_cast<QAbstractButton *>(control))
        return !button->text().isEmpty();
    if (auto *label = qobject_cast<QLabel *>(control))
        return !label->text().isEmpty();
    if (auto *group = qobject_cast<QGroupBox *>(control))
        return !group->title().isEmpty();
    return false;
}

void setTooltip(QObject *control, const QString &tooltip, const QString &text)
{
    if (auto *action = qobject_cast<QAction *>(control)) {
        action->setToolTip(tooltip);
        return;
    }
    auto *widget = qobject_cast<QWidget *>(control);
    if (!widget)
        return;
    widget->setToolTip(tooltip);
    widget->setAccessibleDescription(text);
    if (!hasCaption(control) && !qobject_cast<QLabel *>(control))
        widget->setAccessibleName(text);
}

} // namespace

QList<Entry> captionsOf(const QString &formName)
{
    if (formName == u"frmMain")
        return MainCaptions;
    if (formName == u"frmFull")
        return FullCaptions;
    if (formName == u"frmIndex")
        return IndexCaptions;
    if (formName == u"frmList")
        return ListCaptions;
    if (formName == u"TechCre")
        return AboutCaptions;
    if (formName == u"TechLink")
        return LinkCaptions;
    return {};
}

QList<Entry> tooltipsOf(const QString &formName)
{
    if (formName == u"frmMain")
        return MainTooltips;
    if (formName == u"frmIndex")
        return IndexTooltips;
    if (formName == u"frmList")
        return ListTooltips;
    return {};
}

void ApplyCaptions(QWidget *form, const MessageCatalogue &messages)
{
    for (const Entry &entry : captionsOf(form->objectName()))
        if (QObject *control = findControl(form, entry.control))
            setCaption(control, form, messages.GetMsg(entry.number, QString::fromUtf8(entry.defaultText)));
    if (form->objectName() != u"frmMain")
        return;
    for (const Entry &entry : MainAccessibleNames)
        if (auto *control = form->findChild<QWidget *>(QLatin1String(entry.control)))
            control->setAccessibleName(messages.GetMsg(entry.number, QString::fromUtf8(entry.defaultText)));
}

void ApplyTooltips(QWidget *form, const MessageCatalogue &messages, bool on)
{
    for (const Entry &entry : tooltipsOf(form->objectName())) {
        QObject *control = findControl(form, entry.control);
        if (!control)
            continue;
        const QString text = messages.GetMsg(entry.number, QString::fromUtf8(entry.defaultText));
        setTooltip(control, on ? QLatin1Char(' ') + text + QLatin1Char(' ') : QString(), text);
    }
    if (form->objectName() == u"TechCre") {
        if (QObject *home = form->findChild<QObject *>(QStringLiteral("LabInt"))) {
            const QString text = messages.GetMsg(10901, QStringLiteral("Web Site"));
            setTooltip(home, on ? QStringLiteral(" Vimora   ") + text + QLatin1Char(' ') : QString(), text);
        }
    }
}

} // namespace FormTexts
