#include "PosixHost.h"

#include "JpegExporter.h"
#include "SoundConverter.h"

namespace host {

std::unique_ptr<PictureExporter> PosixHost::NewPictureExporter(int width, int height, int rowBytes) {
    return NewJpegExporter(width, height, rowBytes);
}

std::unique_ptr<PictureBlock> PosixHost::NewPictureBlock() {
    return NewJpegBlock();
}

std::unique_ptr<AudioConverter> PosixHost::NewAudioConverter(const AudioConverterFormat& format) {
    return NewSoundConverter(format);
}

} // namespace host
