#pragma once

#include "vnFocus.h"
#include "zRecord.h"
#include "zRect.h"

/// A focus on a rectangle of the current display, by one of a list of presets.
///
/// A preset is a record with "title", "options" (bits of PresetOption), "rect" and "preset_id". It is
/// evaluated against the display's bounds at every look. Callers hold the application's shared lock.
class vnFocusRect : public vnFocus {
  public:
    enum PresetOption : unsigned int {
        kWholeDisplay = 1,
        kCentered = 2, ///< The rectangle gives the size alone; it is centred in the display.
        kUserSized = 4 ///< The user sets the rectangle.
    };

    /// Access to a preset's record. What is absent reads as "", no options, and an all-zero rectangle.
    struct Preset {
        static void SetTitle(zRecord& preset, const char* title);
        static void SetRect(zRecord& preset, const zRect& rect);
        static void SetOptions(zRecord& preset, unsigned int options);
        /// Owned by the record.
        static const char* Title(const zRecord& preset);
        static zRect Rect(const zRecord& preset);
        static unsigned int Options(const zRecord& preset);

        /// A size that the user types.
        static bool IsCustomCentered(const zRecord& preset);
        /// A rectangle that the user draws.
        static bool IsRegionSelection(const zRecord& preset);
    };

    vnFocusRect();

    /// Always 0. The rectangle may reach beyond the display: who writes a preset limits its size.
    int Rect(zRect& rect) override;

    /// Appends a copy, with a new "preset_id".
    void AddPreset(const zRecord& preset);
    /// Empties the list; the preset in force stays.
    void RemoveAllPresets() { fPresets.RemoveAndDeleteAllChildren(); }
    /// Overwrites the preset of the same "preset_id" by a copy; nothing if there is none.
    void ChangePreset(const zRecord& preset);
    /// Copies the list: a child for each preset.
    void Presets(zRecord& out) const;

    /// The preset in force is a copy, which need not be in the list.
    void SetCurrent(const zRecord& preset);
    void Current(zRecord& out) const;

    /// The bounds of the current display. They are not looked up again.
    void SetMaximumRect(const zRect& rect) { fMaximumRect = rect; }

    void SetCurrentDisplayIndex(int index) { fCurrentDisplayIndex = index; }
    int GetCurrentDisplayIndex() const { return fCurrentDisplayIndex; }

    /// The display on which a region was last drawn, -1 for none. On any other one every preset stands for
    /// the whole display.
    void SetCurrentScreenRegionDisplayIndex(int index) { fScreenRegionDisplayIndex = index; }
    int GetCurrentScreenRegionDisplayIndex() const { return fScreenRegionDisplayIndex; }

  private:
    bool is_whole_display() const;

    zRecord fPresets;
    zRecord fCurrent;
    zRect fMaximumRect;
    unsigned int fPresetIDKey;
    int fCurrentDisplayIndex = 0;
    int fScreenRegionDisplayIndex = -1;
};
