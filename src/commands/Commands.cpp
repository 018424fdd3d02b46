#include "commands/Commands.h"

#include <array>

namespace Commands {
namespace {

struct Row {
    Command command;
    const char *name;
};

// Names are the controls' names the texts of each window are looked up by.
constexpr std::array<Row, size_t(Command::Count)> Rows{{
    {Command::Open, "mnuOpen"},           {Command::Play, "mnuPlay"},
    {Command::Stop, "mnuStop"},           {Command::SepPlay, "mnuSepp"},
    {Command::Anim, "mnuAnim"},           {Command::SepGif, "mnuSepGif"},
    {Command::FullScreen, "mnuFullScreen"}, {Command::Normal, "mnuNormal"},
    {Command::Save, "mnuSave"},           {Command::Print, "mnuPrint"},
    {Command::Clipboard, "mnuClipboard"}, {Command::Grab, "mnuGrab"},
    {Command::SepX, "mnusepX"},           {Command::Wall, "mnuWall"},
    {Command::RemoveWall, "mnuRemoveWall"}, {Command::Move, "mnuMove"},
    {Command::Sep, "mnusep"},             {Command::Add, "mnuAdd"},
    {Command::Remove, "mnuRemove"},       {Command::Global, "mnuGlobal"},
    {Command::Sep99, "mnusep99"},         {Command::Rename, "SFRename"},
    {Command::Delete, "SFDelete"},        {Command::Undo, "mnuUndo"},
    {Command::Info, "SFInfo"},
    {Command::ShellOpen, "mnuShellOpen"}, {Command::ShellEdit, "mnuShellEdit"},
    {Command::SepW, "mnusepw"},           {Command::Fit, "mnufit"},
    {Command::Full, "mnuFull"},           {Command::Zoom, "mnuZoom"},
    {Command::Zoom10, "mnu10"},           {Command::Zoom25, "mnu25"},
    {Command::Zoom50, "mnu50"},           {Command::Zoom75, "mnu75"},
    {Command::Zoom100, "mnu100"},         {Command::Zoom125, "mnu125"},
    {Command::Zoom150, "mnu150"},         {Command::Zoom175, "mnu175"},
    {Command::Zoom200, "mnu200"},         {Command::Zoom300, "mnu300"},
    {Command::Zoom400, "mnu400"},         {Command::Zoom800, "mnu800"},
    {Command::SepFull1, "mnusep1"},       {Command::SepFull2, "mnusep2"},
    {Command::SepFull3, "mnusep3"},       {Command::SepIndex1, "mnusepI1"},
    {Command::SepIndex2, "mnusepI2"},     {Command::SepIndex3, "mnusepI3"},
    {Command::SepIndex4, "mnusepI4"},     {Command::ListRename, "mnuRename"},
    {Command::ListDelete, "mnuDelete"},   {Command::ListClear, "mnuClear"},
    {Command::SepList, "mnusepL"},        {Command::ListCopySelected, "actCopySelected"},
    {Command::ListMoveSelected, "actMoveSelected"}, {Command::ListDeleteSelected, "actDeleteSelected"},        {Command::CropSave, "mnuCropSave"},
    {Command::CropClip, "mnuCropClip"},   {Command::CropPrint, "mnuCropPrint"},
    {Command::DirOpen, "mnuDirOpen"},     {Command::DirExplore, "mnuDirExpl"},
    {Command::Next, "actNext"},           {Command::Back, "actBack"},
    {Command::StepNext, "actStepNext"},   {Command::StepBack, "actStepBack"},
    {Command::SpaceKey, "actSpace"},      {Command::EnterKey, "actEnter"},
    {Command::Language, "actLanguage"},   {Command::Refresh, "actRefresh"},
    {Command::Crop, "actCrop"},       {Command::ZoomIn, "actZoomIn"},
    {Command::ZoomOut, "actZoomOut"},      {Command::FocusPathBox, "actPathBox"},
    {Command::About, "actAbout"},         {Command::Index, "actIndex"},
    {Command::CancelSelection, "actEscape"}, {Command::Close, "actClose"},
    {Command::FolderUp, "actUp"},         {Command::ClearHistory, "actClear"},
    {Command::Help, "actHelp"},           {Command::Associations, "actLink"},
    {Command::PlayGroup, "actPlayGroup"}, {Command::PauseGroup, "actPauseGroup"},
    {Command::StopGroup, "actStopGroup"}, {Command::Volume, "actVolume"},
    {Command::PlayCell, "actPlayCell"},   {Command::PauseCell, "actPauseCell"},
    {Command::StopCell, "actStopCell"},
}};

constexpr bool rowsInOrder()
{
    for (size_t i = 0; i < Rows.size(); ++i)
        if (size_t(Rows[i].command) != i)
            return false;
    return true;
}
static_assert(rowsInOrder(), "one row per command, in the order of the enum");

constexpr std::array<int, 12> ZoomPercents{10, 25, 50, 75, 100, 125, 150, 175, 200, 300, 400, 800};

} // namespace

const char *name(Command command) { return Rows[size_t(command)].name; }

bool isSeparator(Command command)
{
    switch (command) {
    case Command::SepPlay: case Command::SepGif: case Command::SepX: case Command::Sep: case Command::Sep99:
    case Command::SepW: case Command::SepFull1: case Command::SepFull2: case Command::SepFull3:
    case Command::SepIndex1: case Command::SepIndex2: case Command::SepIndex3: case Command::SepIndex4:
    case Command::SepList:
        return true;
    default:
        return false;
    }
}

bool isSubmenu(Command command) { return command == Command::Zoom; }

int zoomPercent(Command command)
{
    const int offset = int(command) - int(Command::Zoom10);
    return offset >= 0 && offset < int(ZoomPercents.size()) ? ZoomPercents[size_t(offset)] : 0;
}

QList<Command> zoomEntries()
{
    QList<Command> entries;
    for (size_t i = 0; i < ZoomPercents.size(); ++i)
        entries.append(Command(int(Command::Zoom10) + int(i)));
    return entries;
}

QList<Command> mainPopup()
{
    using C = Command;
    return {C::Play, C::Stop, C::SepPlay, C::Anim, C::SepGif, C::FullScreen, C::Save, C::Print, C::Clipboard,
            C::Grab, C::SepX, C::Wall, C::RemoveWall, C::Move, C::Sep, C::Add, C::Remove, C::Global, C::Sep99,
            C::Rename, C::Delete, C::Undo, C::Info, C::ShellOpen, C::ShellEdit, C::SepW, C::Fit, C::Full, C::Zoom};
}

QList<Command> cropPopup() { return {Command::CropSave, Command::CropClip, Command::CropPrint}; }

QList<Command> folderPopup() { return {Command::DirOpen, Command::DirExplore}; }

QList<Command> fullScreenPopup()
{
    using C = Command;
    return {C::Play, C::Stop, C::SepPlay, C::Anim, C::SepGif, C::Normal, C::Zoom, C::Fit, C::Full, C::SepFull1,
            C::Add, C::Remove, C::SepFull2, C::ShellOpen, C::ShellEdit, C::Print, C::Save, C::SepFull3, C::Wall,
            C::RemoveWall};
}

QList<Command> indexPopup()
{
    using C = Command;
    return {C::Open, C::Play, C::Stop, C::SepPlay, C::Save, C::Print, C::Clipboard, C::SepIndex1, C::Wall,
            C::RemoveWall, C::Move, C::SepIndex2, C::Add, C::Remove, C::Global, C::SepIndex3, C::Rename, C::Delete,
            C::Undo, C::Info, C::ShellOpen, C::ShellEdit};
}

QList<Command> favouritesPopup()
{
    using C = Command;
    return {C::Open, C::Save,    C::Move,   C::ListDelete, C::ListRename,
            C::Undo, C::Info, C::SepList, C::Remove, C::ListClear};
}

} // namespace Commands
