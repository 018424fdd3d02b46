#include "output/clsCommonDialog.h"

#include "output/OutputRules.h"
#include "platform/Prompts.h"

#include <QFileInfo>
#include <QPrinter>
#include <QRegularExpression>

namespace {
std::int16_t stored(std::int16_t value) { return value < 1 ? std::int16_t(0) : value; }
} // namespace

std::int16_t clsCommonDialog::Copies() const { return (Flags & UseDriverCopies) ? std::int16_t(1) : m_copies; }

void clsCommonDialog::setCopies(std::int16_t copies) { m_copies = stored(copies); }

// Each page setter keeps the range consistent, comparing the value as given
// (a negative one included) with the other three.
void clsCommonDialog::setMin(std::int16_t value)
{
    m_min = stored(value);
    for (std::int16_t *other : {&m_max, &m_fromPage, &m_toPage})
        if (*other < value)
            *other = value;
}

void clsCommonDialog::setMax(std::int16_t value)
{
    m_max = stored(value);
    for (std::int16_t *other : {&m_toPage, &m_fromPage, &m_min})
        if (*other > value)
            *other = value;
}

void clsCommonDialog::setFromPage(std::int16_t value)
{
    m_fromPage = stored(value);
    if (m_max < value)
        m_max = value;
    if (m_min > value)
        m_min = value;
    if (m_toPage < value)
        m_toPage = value;
}

void clsCommonDialog::setToPage(std::int16_t value)
{
    m_toPage = stored(value);
    if (m_max < value)
        m_max = value;
    if (m_min > value)
        m_min = value;
    if (m_fromPage > value)
        m_fromPage = value;
}

QStringList clsCommonDialog::qtFilters(const QString &filter)
{
    // A description often names its patterns already, "Bitmap (*.BMP)":
    // Qt shows the pattern part itself, so that part is dropped.
    static const QRegularExpression patternTail(QStringLiteral(R"(\s*\([^()]*[*?][^()]*\)\s*$)"));
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts.at(i);
        description.remove(patternTail);
        QStringList patterns = parts.at(i + 1).split(QLatin1Char(';'), Qt::SkipEmptyParts);
        for (QString &pattern : patterns) {
            pattern = pattern.trimmed();
            if (pattern == u"*.*")
                pattern = QStringLiteral("*"); // Qt's *.* wants a dot in the name
        }
        if (!patterns.isEmpty())
            filters.append(description.trimmed() + QStringLiteral(" (") + patterns.join(QLatin1Char(' '))
                           + QLatin1Char(')'));
    }
    return filters;
}

bool clsCommonDialog::ShowOpen(Prompts &prompts)
{
    m_extendedError = 0;
    m_errorText.clear();
    const int room = (MaxFileSize <= 0 ? 256 : MaxFileSize) - 1;
    FileDialogRequest request;
    request.owner = m_parent;
    request.title = m_dialogTitle;
    request.folder = InitDir;
    request.fileName = OutputRules::StripNul(FileName).left(room);
    request.filters = qtFilters(Filter);
    request.filterIndex = qMax(0, FilterIndex - 1);
    request.defaultSuffix = DefaultExt;
    request.mustExist = Flags & FileMustExist;
    request.confirmReplace = !CallerAsksBeforeReplacing;

    const FileDialogAnswer answer = prompts.chooseFile(request);
    const QString chosen = OutputRules::StripNul(answer.path);
    if (!answer.error.isEmpty()) {
        m_extendedError = DialogFailure;
        m_errorText = answer.error;
    } else if (chosen.size() > room) {
        m_extendedError = BufferTooSmall;
    }
    if (chosen.isEmpty() || m_extendedError != 0) {
        FileName.clear();
        return false;
    }
    FileName = chosen;
    FilterIndex = answer.filterIndex + 1;
    m_fileTitle = QFileInfo(chosen).fileName();
    return true;
}

bool clsCommonDialog::ShowPrinter(Prompts &prompts, QPrinter &printer)
{
    m_extendedError = 0;
    m_errorText.clear();
    m_hDC = nullptr;
    PrintDialogRequest request;
    request.owner = m_parent;
    request.minPage = m_min;
    request.maxPage = m_max;
    request.fromPage = m_fromPage;
    request.toPage = m_toPage;
    request.selectionAllowed = !(Flags & NoSelection);
    printer.setCopyCount(qMax<int>(1, m_copies));
    if (!prompts.choosePrinter(printer, request))
        return false;

    m_hDC = &printer;
    m_min = stored(std::int16_t(request.minPage));
    m_max = stored(std::int16_t(request.maxPage));
    m_fromPage = stored(std::int16_t(request.fromPage));
    m_toPage = stored(std::int16_t(request.toPage));
    m_copies = stored(std::int16_t(printer.copyCount()));
    // A printer that cannot make copies itself gets one, and the caller
    // repeats the drawing; the flag then no longer says the driver does it.
    if ((Flags & UseDriverCopies) && !printer.supportsMultipleCopies()) {
        Flags &= ~UseDriverCopies;
        printer.setCopyCount(1);
    }
    return true;
}
