#include "logbook/LogView.h"

#include "logbook/LogBook.h"

#include <QHash>
#include <QIODevice>

std::optional<LogFields> SplitLogLine(QStringView line)
{
    LogFields fields;
    qsizetype at = 0;
    const qsizetype end = line.size();
    for (std::size_t f = 0; f < fields.size(); ++f) {
        while (at < end && line[at] == u' ')
            ++at;
        if (at >= end && f > 0)
            return std::nullopt;
        if (at < end && line[at] == u'"') {
            const qsizetype close = line.indexOf(u'"', at + 1);
            const qsizetype stop = close < 0 ? end : close;
            fields[f] = line.mid(at + 1, stop - at - 1).toString();
            at = close < 0 ? end : close + 1;
            // Whatever follows the closing mark up to the comma is not part of the field.
            const qsizetype comma = line.indexOf(u',', at);
            at = comma < 0 ? end : comma + 1;
        } else {
            const qsizetype comma = line.indexOf(u',', at);
            const qsizetype stop = comma < 0 ? end : comma;
            fields[f] = line.mid(at, stop - at).trimmed().toString();
            at = comma < 0 ? end : comma + 1;
        }
    }
    return fields;
}

QByteArray LogViewHeader()
{
    return QByteArrayLiteral("{\\rtf1\\ansi\\deff0\\deftab5000{\\fonttbl{\\f0\\fswiss MS Sans Serif;}"
                             "{\\f1\\froman\\fcharset2 Symbol;}{\\f2\\fswiss System;}}\r\n"
                             "{\\colortbl\\red0\\green0\\blue0;}\r\n"
                             "\\deftab5000\r\n"
                             "\\deflang1033\\pard\\plain\\f2\\fs20 \r\n");
}

namespace {

void AppendEntry(QByteArray& out, const LogFields& f)
{
    // The texts go into the document as they are, without escaping.
    out += "\\par\\pard\\plain\\f0\\fs10 ";
    out += f[1].toUtf8();
    out += "--";
    out += f[4].toUtf8();
    out += "\\f2 ";
    out += f[5].toUtf8();
    out += "\\f0 ";
    out += f[6].toUtf8();
    out += "\r\n";
}

} // namespace

QByteArray LogViewEntry(const LogFields& f)
{
    QByteArray line;
    AppendEntry(line, f);
    return line;
}

QByteArray LogViewFooter()
{
    return QByteArrayLiteral("\\par }\r\n");
}

QByteArray LogViewNote(const QString& note)
{
    return QByteArrayLiteral("\\par\\pard\\plain\\f0\\fs10 ") + note.toUtf8() + "\r\n";
}

QByteArray LogViewDocument(const LogViewDay& day)
{
    QByteArray text = LogViewHeader();
    // Room for the usual entry: the control words and line end, texts mostly in ASCII.
    qsizetype size = text.size() + 64;
    for (const LogFields& entry : day.Entries)
        size += 40 + entry[1].size() + entry[4].size() + entry[5].size() + entry[6].size();
    text.reserve(size + size / 8);
    for (const LogFields& entry : day.Entries)
        AppendEntry(text, entry);
    if (!day.CutNote.isEmpty())
        text += LogViewNote(day.CutNote);
    text += LogViewFooter();
    return text;
}

LogDayRead ReadLogDay(QIODevice& file, QDate day, const QLocale& locale, qint64 maxBytes)
{
    LogDayRead read;
    // Nearly every line of a day carries the same date text: read each text once.
    QHash<QString, std::optional<QDate>> dates;
    while (!file.atEnd()) {
        if (maxBytes >= 0 && file.pos() >= maxBytes) {
            read.Cut = true;
            break;
        }
        // A line is read up to the limit too: one endless line must not be read whole.
        const QByteArray bytes = maxBytes >= 0 ? file.readLine(maxBytes - file.pos() + 1) : file.readLine();
        if (maxBytes >= 0 && !bytes.endsWith('\n') && !file.atEnd()) {
            read.Cut = true;
            break;
        }
        QString line = QString::fromUtf8(bytes);
        while (line.endsWith(u'\n') || line.endsWith(u'\r'))
            line.chop(1);
        const auto fields = SplitLogLine(line);
        if (!fields)
            continue;
        auto known = dates.constFind((*fields)[0]);
        if (known == dates.cend())
            known = dates.insert((*fields)[0], ParseLogDate((*fields)[0], locale));
        const std::optional<QDate>& date = *known;
        if (!date)
            continue;
        if (*date == day)
            read.Entries.append(*fields);
        read.SeenDates.append(*date);
    }
    return read;
}

QString LogPrintLine(const LogFields& f)
{
    return f[1] + QStringLiteral("--") + f[4] + f[5] + f[6];
}
