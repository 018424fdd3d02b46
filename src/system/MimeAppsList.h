#pragma once

#include <QString>
#include <QStringList>

// A freedesktop key file (mimeapps.list) edited line by line: every line
// that is not changed, comments and other groups included, is written back
// as it was. QSettings cannot do this: it treats "/" in keys as groups and
// rewrites the whole file.
class MimeAppsList {
public:
    static MimeAppsList fromText(const QString &text);
    // A missing or unreadable file reads as empty.
    static MimeAppsList load(const QString &path);
    // Replaces the file in one step (no half-written file); false on failure.
    bool save(const QString &path) const;
    QString toText() const;

    // Empty when the group or key is missing.
    QString value(const QString &group, const QString &key) const;
    void setValue(const QString &group, const QString &key, const QString &value);
    void remove(const QString &group, const QString &key);

private:
    struct Range {
        qsizetype header = -1; // line of "[group]", -1 when missing
        qsizetype end = 0;     // first line after the group
    };
    Range groupRange(const QString &group) const;
    qsizetype keyLine(const Range &range, const QString &key) const;

    QStringList m_lines;
};
