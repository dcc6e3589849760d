#pragma once

#include "logbook/LogView.h"

class QTextDocument;

// Fills `document` with a day of the log exactly as reading its view document
// (LogViewDocument, the bytes of "LogBook.rtf") through the rich-text reader (ReadRtf) with
// `sizeFactor` fills it: the same text, paragraphs and formats. The entries go in straight
// as text, a run of equal format at a time; the formats are the ones the reader gives the
// lines the header declares. An entry whose text holds rich-text syntax (a backslash or a
// brace: the document carries the texts unescaped) is read by the reader, and so is what
// follows it for as long as its effect lasts. As with ReadRtf, the document's undo history
// is cleared and the document is left unmodified.
void BuildLogView(QTextDocument& document, const LogViewDay& day, double sizeFactor);
