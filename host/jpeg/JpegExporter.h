#pragma once

#include <memory>

#include "PictureExporter.h"

/// \file
/// The picture exporter on libjpeg-turbo. What its three qualities mean is told, with measurements, in
/// docs/quality.md.

namespace host {

/// A new exporter at normal quality. Null for a geometry that no JPEG can have (an extent below 1 or above
/// 65500) or whose rows overlap, and when memory is short.
std::unique_ptr<PictureExporter> NewJpegExporter(int width, int height, int rowBytes);

/// A new, empty block, the only kind that these exporters fill; never null.
std::unique_ptr<PictureBlock> NewJpegBlock();

} // namespace host
