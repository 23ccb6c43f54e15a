#include "PosixHost.h"

#include "JpegExporter.h"

namespace host {

std::unique_ptr<PictureExporter> PosixHost::NewPictureExporter(int width, int height, int rowBytes) {
    return NewJpegExporter(width, height, rowBytes);
}

std::unique_ptr<PictureBlock> PosixHost::NewPictureBlock() {
    return NewJpegBlock();
}

} // namespace host
