#pragma once

#include <QString>

class QMimeData;

// The first file of what was dropped on a window: from a file list
// (text/uri-list), else from dropped text, where a leading "file:" (any
// case, as browsers send it) is taken off and %-escapes decoded.
QString droppedFilePath(const QMimeData &data);
QString droppedTextPath(const QString &text);
