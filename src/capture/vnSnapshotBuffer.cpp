#include "vnSnapshotBuffer.h"

int vnSnapshotBuffer::Configure(int width, int height, int rowBytes, uint32_t colorSpace) {
    fWidth = width;
    fHeight = height;
    fRowBytes = rowBytes;
    fColorSpace = colorSpace;
    return 0;
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
