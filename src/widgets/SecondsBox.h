#pragma once

#include <QHash>
#include <QPixmap>
#include <QWidget>

// A display-only box that shows a short text, such as the two digits of the seconds, looking
// like a read-only line edit. It is built for a text that changes every second all day: each
// text is drawn once, frame and all, into a pixmap that is kept, so a change costs one copy
// of a small picture. A line edit would shape the text anew and draw its frame through the
// style at every change.
class SecondsBox final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
public:
    explicit SecondsBox(QWidget* parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    void textChanged(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    const QPixmap& Drawn(const QString& text);

    QString m_text;
    // The box as drawn with each text shown so far (sixty at most for the seconds), for the
    // current size, font, palette and style.
    QHash<QString, QPixmap> m_drawn;
};
