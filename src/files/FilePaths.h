#pragma once

#include <QString>

// Path routines shared by every window. They split at "\" when the path
// holds one, else at "/", so paths written either way come apart alike.

// The text before the last separator; `otherwise` when there is none.
QString FolderOf(const QString &path, const QString &otherwise = {});

// Leading separators stripped, then the text after the last separator.
QString FileNameOfPath(const QString &path);

// A plain, visible file that exists: not empty, no wildcard, not a folder
// and not a dot file. Errors count as "no".
bool IsExistingFile(const QString &path);

// folder + "/" + name, without doubling a separator the folder ends in.
QString PathInFolder(const QString &folder, const QString &name);

// Whether both paths name the same file in other letter case (case-blind).
bool SamePathIgnoringCase(const QString &a, const QString &b);
