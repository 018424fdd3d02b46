#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>

// Lists the names of a folder that pass a type filter, in natural,
// case-blind name order, skipping hidden files. It runs in steps so that
// the window can let events run between them and drop a listing that a
// newer folder or filter made stale.
class FolderListing {
public:
    FolderListing(const QString &folder, const QString &filterCode, const QString &filterItemText);
    ~FolderListing();

    // Reads up to maxEntries more directory entries; true once the listing
    // is complete (the names are then sorted).
    bool step(int maxEntries);
    bool done() const;
    // The folder exists but could not be read (no permission, I/O error).
    bool unreadable() const { return m_unreadable; }

    const QStringList &names() const { return m_names; }
    double totalBytes() const { return m_totalBytes; }

    // Runs the whole listing at once.
    static FolderListing listAll(const QString &folder, const QString &filterCode, const QString &filterItemText);

    FolderListing(FolderListing &&) noexcept;
    FolderListing &operator=(FolderListing &&) noexcept;

private:
    struct Directory;
    std::unique_ptr<Directory> m_directory;
    QSet<QString> m_extensions; // upper case, as extensionOf gives them
    QStringList m_names;
    double m_totalBytes = 0;
    bool m_done = false;
    bool m_unreadable = false;
};

// The count of files, five blanks, then their size: "3     2 K", "0     0 byte".
QString FolderSummaryText(int count, double totalBytes);

// Sorts names as a person reads them: "img2" before "img10", case-blind.
void sortNaturally(QStringList &names);
