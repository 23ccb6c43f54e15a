#include "vnSnapshot.h"

vnSnapshot::~vnSnapshot() = default;

void vnSnapshot::SetIgnoreScreenDiffs(bool ignore) {
    fIgnoreScreenDiffs = ignore;
}

bool vnSnapshot::IgnoreScreenDiffs() const {
    return fIgnoreScreenDiffs;
}

bool vnSnapshot::IsPaused() const {
    return fPaused;
}

bool vnSnapshot::VideoIsEnabled() const {
    return fVideoEnabled;
}

bool vnSnapshot::AudioIsEnabled() const {
    return fAudioEnabled;
}

void vnSnapshot::SetPaused(bool paused) {
    fPaused = paused;
}

void vnSnapshot::EnableVideo(bool enable) {
    fVideoEnabled = enable;
}

void vnSnapshot::EnableAudio(bool enable) {
    fAudioEnabled = enable;
}

int vnSnapshot::Open() {
    return fOpenCount++ == 0 ? do_open() : 0;
}

void vnSnapshot::Close() {
    if (fOpenCount-- == 1)
        do_close();
}
