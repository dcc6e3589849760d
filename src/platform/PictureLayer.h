#pragma once

#include <QRect>

#include <memory>

class QImage;
class QWidget;

// A small rectangle over a window whose pixels the display server keeps and redraws by
// itself. The program hands each picture over once; showing one of them afterwards is a
// short request, with no repaint in the program and no pixels sent. Meant for a display that
// changes all day among a few pictures, such as the two digits of the seconds.
class PictureLayer
{
public:
    virtual ~PictureLayer() = default;
    // Hands `picture` (in device pixels) to the server and returns its number, or -1 when it
    // cannot be kept there (too large, of a form the display does not take, or the layer
    // has failed).
    virtual int Keep(const QImage& picture) = 0;
    // Shows kept picture `number` over `area` of the window (device pixels; the size of the
    // picture), above everything the window draws itself. False when the layer has failed:
    // the server refused one of its requests (out of memory, a window of another kind made
    // anew), so what it shows may be wrong; the caller then hides it and paints the usual way.
    virtual bool Show(int number, const QRect& area) = 0;
    // Takes the layer away: the window's own drawing shows again.
    virtual void Hide() = 0;
    // Frees every kept picture; numbers start again from 0. The one shown stays shown until
    // the next Show or Hide.
    virtual void Forget() = 0;
};

// Makes layers over the program's windows.
class PictureLayers
{
public:
    virtual ~PictureLayers() = default;
    // A layer over the top-level `window` (shown, or at least created), or nullptr when the
    // display has no such thing; the caller then repaints the usual way.
    virtual std::unique_ptr<PictureLayer> Create(QWidget* window) = 0;

    static std::unique_ptr<PictureLayers> Make();
};

// Never makes a layer: for a system without them, and for tests.
class NullPictureLayers final : public PictureLayers
{
public:
    std::unique_ptr<PictureLayer> Create(QWidget*) override { return nullptr; }
};
