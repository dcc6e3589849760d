// Fuzzes the log line reader: any bytes, read as a day's log file, must neither crash nor
// hang the reader.
#include "logbook/LogView.h"

#include <QBuffer>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto fields = SplitLogLine(QString::fromUtf8(bytes));
    if (fields)
        (void)LogPrintLine(*fields);
    QBuffer file(&bytes);
    if (file.open(QIODevice::ReadOnly)) {
        const LogDayRead read =
            ReadLogDay(file, QDate(2026, 11, 16), QLocale(QLocale::English, QLocale::UnitedStates));
        for (const LogFields& entry : read.Entries)
            (void)LogViewEntry(entry);
    }
    return 0;
}
