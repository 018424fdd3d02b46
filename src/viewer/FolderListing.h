#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

// Lists the names of a folder that pass a type filter, in natural,
// case-blind name order, skipping hidden files and anything that is not a
// regular file (or a link to one). It runs in steps so that the window can
// let events run between them and drop a listing that a newer folder or
// filter made stale.
class FolderListing {
public:
    FolderListing(const QString &folder, const QString &filterCode, const QString &filterItemText);
    ~FolderListing();
    FolderListing(FolderListing &&) noexcept;
    FolderListing &operator=(FolderListing &&) noexcept;

    // Reads up to maxEntries more directory entries, admitted or not, so
    // that a step costs about the same in any folder, and stops sooner
    // once a step has taken StepBudgetMs (a slow disk, a large folder's
    // stat calls). True once the listing is complete; the names are then
    // sorted.
    bool step(int maxEntries);
    static constexpr int StepBudgetMs = 8; // half a frame: events run between steps

    // Steps until the end, asking shouldContinue between steps (where the
    // window lets events run). False when it said no: the listing is then
    // cancelled.
    bool run(int entriesPerStep, const std::function<bool()> &shouldContinue);

    // Closes the folder and forgets what was read: a stale listing must not
    // reach the window.
    void cancel();

    bool done() const { return m_done; }
    bool cancelled() const { return m_cancelled; }
    // The folder exists but could not be read (no permission, I/O error).
    bool unreadable() const { return m_unreadable; }

    // Complete only once done().
    const QStringList &names() const { return m_names; }
    int count() const { return int(m_names.size()); }
    double totalBytes() const { return m_totalBytes; }
    // The names as the window keeps them: one empty name when there are none.
    QStringList fileNames() const;

    // Runs the whole listing at once.
    static FolderListing listAll(const QString &folder, const QString &filterCode, const QString &filterItemText);

private:
    struct State;
    std::unique_ptr<State> m_state;
    QStringList m_names;
    double m_totalBytes = 0;
    bool m_done = false;
    bool m_cancelled = false;
    bool m_unreadable = false;
};

// Whether a listing of folder under this filter lists name, by the same
// rules as FolderListing::step, for a name known before the listing ends.
bool WouldBeListed(const QString &folder, const QString &name, const QString &filterCode,
                   const QString &filterItemText);

// The count of files, five blanks, then their size: "3     2 K", "0     0 byte".
QString FolderSummaryText(int count, double totalBytes);

// The count of a FileNames list, where one empty name means none.
int FileCount(const QStringList &fileNames);

// Sorts names as a person reads them: "img2" before "img10", case-blind.
void sortNaturally(QStringList &names);
