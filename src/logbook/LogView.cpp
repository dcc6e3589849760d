#include "logbook/LogView.h"

#include "logbook/LogBook.h"

#include <QByteArrayView>
#include <QHash>
#include <QIODevice>

#include <algorithm>

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
    // The bytes that may be read are read at once: up to the limit, never past it (one
    // endless line must not be read whole).
    const QByteArray data =
        maxBytes >= 0 ? file.read(std::max<qint64>(maxBytes - file.pos(), 0)) : file.readAll();
    const bool moreAfter = !file.atEnd();
    // Room for every line at once: the entries are not moved as the lists grow.
    const qsizetype lines = data.count('\n') + 1;
    read.Entries.reserve(lines);
    read.SeenDates.reserve(lines);
    // Nearly every line of a day carries the same date text: read each text once.
    QHash<QString, std::optional<QDate>> dates;
    QString lastText;
    std::optional<QDate> lastDate;
    qsizetype at = 0;
    while (at < data.size() || moreAfter) {
        if (at >= data.size()) {
            read.Cut = true; // a line begins at the limit
            break;
        }
        const qsizetype newline = data.indexOf('\n', at);
        const qsizetype end = newline < 0 ? data.size() : newline + 1;
        if (newline < 0 && moreAfter) {
            read.Cut = true; // the line runs on past the limit
            break;
        }
        QString line = QString::fromUtf8(QByteArrayView(data).sliced(at, end - at));
        at = end;
        while (line.endsWith(u'\n') || line.endsWith(u'\r'))
            line.chop(1);
        const auto fields = SplitLogLine(line);
        if (!fields)
            continue;
        const QString& text = (*fields)[0];
        if (text != lastText || lastText.isNull()) {
            auto known = dates.constFind(text);
            if (known == dates.cend())
                known = dates.insert(text, ParseLogDate(text, locale));
            lastText = known.key();
            lastDate = *known;
        }
        if (!lastDate)
            continue;
        if (*lastDate == day)
            read.Entries.append(*fields);
        read.SeenDates.append(*lastDate);
    }
    return read;
}

QString LogPrintLine(const LogFields& f)
{
    return f[1] + QStringLiteral("--") + f[4] + f[5] + f[6];
}
