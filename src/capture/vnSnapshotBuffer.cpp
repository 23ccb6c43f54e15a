#include "vnSnapshotBuffer.h"

int vnSnapshotBuffer::Configure(int width, int height, int rowBytes, uint32_t colorSpace) {
    fWidth = width;
    fHeight = height;
    fRowBytes = rowBytes;
    fColorSpace = colorSpace;
    return 0;
}

bool vnSnapshotBuffer::HoldsItsPixels() {
    const int64_t bytes = int64_t{RowBytes()} * Height();
    return bytes > 0 && bytes <= Size();
}

int vnSnapBuff_ogl::Configure(int width, int height, int rowBytes, int colorSpace) {
    vnSnapshotBuffer::Configure(width, height, rowBytes, static_cast<uint32_t>(colorSpace));
    return fStore.ResizeTo(static_cast<unsigned int>(rowBytes * height), zBuffer::kKeepLargerBlock);
}

int vnSnapBuff_cg::Configure(int width, int height, int rowBytes, uint32_t colorSpace) {
    vnSnapshotBuffer::Configure(width, height, rowBytes, colorSpace);
    return fStore.ResizeTo(static_cast<unsigned int>(rowBytes * height), zBuffer::kKeepLargerBlock);
}

int vnSnapBuff_mouse::Configure(int width, int height, int rowBytes, uint32_t colorSpace) {
    vnSnapshotBuffer::Configure(width, height, rowBytes, colorSpace);
    const auto needed = static_cast<unsigned int>(rowBytes * height);
    return fStore.Size() < needed ? fStore.ResizeTo(needed, zBuffer::kKeepContents) : 0;
}
