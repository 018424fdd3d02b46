#pragma once

#include "files/FileUndo.h"

#include <QRect>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>

struct AppState;
struct FileContext;
class Prompts;
class QAction;
class QCheckBox;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QMenu;
class CommandSet;
class QPushButton;

// What the favourites window needs of the main window.
class FavouritesHost {
public:
    virtual ~FavouritesHost() = default;
    virtual QString shownFolder() const = 0;
    virtual QString shownPath() const = 0;     // "" when no file is shown
    virtual QRect mainFrame() const = 0;       // the main window's frame, for placing this one
    virtual void refreshFileList() = 0;
    virtual void showFile(const QString &path) = 0;
    virtual void forgetShownFile() = 0;        // hide the picture and its labels: the file is gone
    virtual void setAddEnabled(bool on) = 0;   // the main window's cmdAdd
    virtual void setListEnabled(bool on) = 0;  // the main window's cmdList
    virtual void pauseSlideshow() = 0;
    virtual void resumeSlideshow() = 0;        // only when the slideshow is on
    virtual void releasePlayers(const QString &path) = 0;
    // The file chores of this run, shared with the main window's Ctrl+Z.
    virtual void recordChore(UndoRecord record) = 0;
    virtual bool canUndo() const = 0;
    virtual void undo() = 0;
    virtual void switchLanguage() = 0;         // F2: every window in the chosen language
};

// The favourites window's controls, private to it.
struct frmListControls {
    QListWidget *ListImage;
    QCheckBox *Check1;
    QPushButton *cmdSave, *cmdMove, *cmdDel, *cmdRemove, *cmdAll;
    QLabel *LabSel;
    QMenu *SFPOPUP;
    QAction *mnuOpen, *mnuSave, *mnuMove, *mnuDelete, *mnuRename, *mnuUndo, *SFInfo, *mnuRemove, *mnuClear;
};

// The favourites window: the user's own list of files, kept across runs,
// with batch copy, move and delete.
class frmList : public QWidget, private frmListControls {
    Q_OBJECT
    friend struct WindowProbe; // the tests read what the controls show
public:
    frmList(AppState &state, Prompts &prompts, FavouritesHost &host, QWidget *parent = nullptr);
    ~frmList() override;

    void Inserisci_Lista(const QString &path);
    void LoadFavourites();
    void SaveFavourites();
    void ApplyLanguage(); // captions and tooltips of the current language
    void RemoveFromFavourites(const QString &path);
    // An entry follows its file renamed or moved elsewhere.
    void replaceEntry(const QString &path, const QString &newPath);
    QStringList entries() const;
    QStringList selectedEntries() const;
    void placeBesideMain();
    // Shown in front with the keyboard: Escape, F2 and the buttons' keys are
    // the list's from the moment it shows.
    void bringForward();

    // The rename box; tests give their own.
    using RenameBox = std::function<QString(const QRect &globalRect, const QString &name)>;
    void setRenameBox(RenameBox box) { m_renameBox = std::move(box); }

    void Check1_Click();
    void ListImage_Click();
    void cmdSave_Click();
    void cmdMove_Click();
    void cmdDel_Click();
    void cmdRemove_Click();
    void cmdAll_Click();
    void mnuOpen_Click();
    void mnuSave_Click();
    void mnuMove_Click();
    void mnuDelete_Click();
    void mnuRename_Click();
    void SFInfo_Click();

    CommandSet *commands; // the popup, the buttons and Escape are made of these

    int ListClickIndex = -1;
    bool ListReady = false;
    int FavouritesStoredCount = 0;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildControls();
    void buildCommands();
    void setSelectionButtons(bool on);
    void setListButtons(bool on);
    void updateSizeLabel();
    void appendEntry(const QString &path);
    void removeEntry(int row);
    QString clickedEntry() const;
    bool clickedPresentOrOffered();
    void copyInto(const QStringList &paths, int titleNumber, const char *title);
    void deletePaths(const QStringList &paths);
    void moveOne(const QString &path);
    void markThumbnail(const QString &path, bool on);
    bool inShownFolder(const QString &path) const;
    FileContext fileContext();

    AppState &m_state;
    Prompts &m_prompts;
    FavouritesHost &m_host;
    RenameBox m_renameBox;
    int m_clickedRowTop = 0;
};
