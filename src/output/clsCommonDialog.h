#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

class Prompts;
class QPaintDevice;
class QPrinter;
class QWidget;

// The open/save and print dialogs with their settings as properties. Each
// command makes a fresh one, sets it up, shows it and reads it back.
class clsCommonDialog {
public:
    // The print flag that leaves copies and collation to the printer driver.
    static constexpr std::int32_t UseDriverCopies = 0x40000;
    static constexpr std::int32_t NoSelection = 0x4;
    // The open flag that asks for an existing file; without it a new name
    // may be typed, which is how the save commands choose destinations.
    static constexpr std::int32_t FileMustExist = 0x1000;
    // Extended error codes: the dialog failed, the chosen name did not fit.
    static constexpr std::int32_t DialogFailure = 0xFFFF;
    static constexpr std::int32_t BufferTooSmall = 0x3003;

    bool CancelError = false; // kept for callers; a cancel is only a false result
    bool CallerAsksBeforeReplacing = false; // the dialog then does not ask too
    std::int32_t Flags = 0;
    QString DefaultExt;
    QString FileName;
    QString Filter;               // "description|patterns|description|patterns"
    std::int32_t FilterIndex = 0; // 1-based
    QString InitDir;
    std::int32_t MaxFileSize = 256;

    QString DialogTitle() const { return m_dialogTitle; }
    void setDialogTitle(const QString &title) { m_dialogTitle = title; }
    std::int32_t ExtendedError() const { return m_extendedError; }
    QString errorText() const { return m_errorText; } // what went wrong, "" after a cancel
    QWidget *Parent() const { return m_parent; }
    void setParent(QWidget *parent) { m_parent = parent; }
    QString FileTitle() const { return m_fileTitle; }
    QPaintDevice *hDC() const { return m_hDC; } // the printer chosen, after ShowPrinter

    std::int16_t Copies() const;
    void setCopies(std::int16_t copies);
    std::int16_t Min() const { return m_min; }
    std::int16_t Max() const { return m_max; }
    std::int16_t FromPage() const { return m_fromPage; }
    std::int16_t ToPage() const { return m_toPage; }
    void setMin(std::int16_t value);
    void setMax(std::int16_t value);
    void setFromPage(std::int16_t value);
    void setToPage(std::int16_t value);

    bool ShowOpen(Prompts &prompts);
    // The printer is the current one: the dialog starts from it and leaves
    // the choice in it.
    bool ShowPrinter(Prompts &prompts, QPrinter &printer);

    // The "|" separated Filter as Qt's filter texts: "Bitmap (*.bmp)".
    static QStringList qtFilters(const QString &filter);

private:
    QString m_dialogTitle;
    std::int32_t m_extendedError = 0;
    QString m_errorText;
    QWidget *m_parent = nullptr;
    QString m_fileTitle;
    QPaintDevice *m_hDC = nullptr;
    std::int16_t m_copies = 0;
    std::int16_t m_min = 0, m_max = 0, m_fromPage = 0, m_toPage = 0;
};
