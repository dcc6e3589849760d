#include "platform/PictureLayer.h"

// Elsewhere the seconds box repaints itself.
std::unique_ptr<PictureLayers> PictureLayers::Make()
{
    return std::make_unique<NullPictureLayers>();
}
