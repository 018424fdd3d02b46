#include "system/MimeAppsList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {
bool isGroupHeader(const QString &line)
{
    return line.startsWith(QLatin1Char('['));
}

QString keyOf(const QString &line)
{
    const QString trimmed = line.trimmed();
    if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#')))
        return {};
    const qsizetype equals = trimmed.indexOf(QLatin1Char('='));
    return equals < 0 ? QString() : trimmed.left(equals).trimmed();
}
} // namespace

MimeAppsList MimeAppsList::fromText(const QString &text)
{
    MimeAppsList list;
    if (text.isEmpty())
        return list;
    list.m_lines = text.split(QLatin1Char('\n'));
    if (list.m_lines.last().isEmpty())
        list.m_lines.removeLast(); // the final newline
    for (QString &line : list.m_lines)
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
    return list;
}

MimeAppsList MimeAppsList::load(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return fromText(QString::fromUtf8(file.readAll()));
}

bool MimeAppsList::save(const QString &path) const
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(toText().toUtf8());
    return file.commit();
}

QString MimeAppsList::toText() const
{
    return m_lines.isEmpty() ? QString() : m_lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

MimeAppsList::Range MimeAppsList::groupRange(const QString &group) const
{
    const QString header = QLatin1Char('[') + group + QLatin1Char(']');
    Range range;
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        if (m_lines[i].trimmed() != header)
            continue;
        range.header = i;
        range.end = i + 1;
        while (range.end < m_lines.size() && !isGroupHeader(m_lines[range.end]))
            ++range.end;
        break;
    }
    return range;
}

qsizetype MimeAppsList::keyLine(const Range &range, const QString &key) const
{
    if (range.header < 0)
        return -1;
    for (qsizetype i = range.header + 1; i < range.end; ++i)
        if (keyOf(m_lines[i]) == key)
            return i;
    return -1;
}

QString MimeAppsList::value(const QString &group, const QString &key) const
{
    const qsizetype line = keyLine(groupRange(group), key);
    if (line < 0)
        return {};
    const QString &text = m_lines[line];
    return text.mid(text.indexOf(QLatin1Char('=')) + 1).trimmed();
}

void MimeAppsList::setValue(const QString &group, const QString &key, const QString &value)
{
    const QString entry = key + QLatin1Char('=') + value;
    const Range range = groupRange(group);
    if (range.header < 0) {
        if (!m_lines.isEmpty() && !m_lines.last().trimmed().isEmpty())
            m_lines.append(QString());
        m_lines.append(QLatin1Char('[') + group + QLatin1Char(']'));
        m_lines.append(entry);
        return;
    }
    if (const qsizetype line = keyLine(range, key); line >= 0) {
        m_lines[line] = entry;
        return;
    }
    // After the group's last entry, so the blank lines that part it from
    // the next group stay where they are.
    qsizetype at = range.end;
    while (at > range.header + 1 && m_lines[at - 1].trimmed().isEmpty())
        --at;
    m_lines.insert(at, entry);
}

void MimeAppsList::remove(const QString &group, const QString &key)
{
    const qsizetype line = keyLine(groupRange(group), key);
    if (line >= 0)
        m_lines.removeAt(line);
}
