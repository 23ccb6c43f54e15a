#pragma once

/// \file
/// Calling points for a leak checker: around what should leave no memory behind. Without a checker
/// they do nothing.

inline void zMemCheck_Mark() {}
inline void zMemCheck_ReportFromMark(bool) {}
