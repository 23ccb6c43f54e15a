#pragma once

class zRecord;

/// A command line as a record: each argument is a text, its id the place from 1.
class zCmdLine {
  public:
    /// Empties the record and adds the arguments, less blank ones and the number that a desktop passes
    /// ("-psn_..."). `skipFirst` leaves the first of those that remain out. 0, or -1 for a null `argv`.
    static int Parse(zRecord& record, int argc, const char** argv, bool skipFirst);
    /// The same for a line, which blanks, tabs and line feeds divide. Either kind of quotes encloses an
    /// argument.
    /// Deliberate: only double quotes protect the blanks in it; lines that were written for it count on that.
    static int Parse(zRecord& record, const char* line, bool skipFirst);

    /// The argument at a place, counted from 0. The text belongs to the record.
    static const char* Arg_IdxAsCString(const zRecord& record, int index, const char* defaultText);
    /// The argument behind the one that equals `name`.
    static const char* Arg_AsCString(const zRecord& record, const char* name, const char* defaultText);
    static int Arg_AsInt32(const zRecord& record, const char* name, int defaultValue);
    /// Whether a letter stands in a group of switches: an argument that starts with a minus and has no value
    /// behind it. The last argument plays no part.
    static bool SwitchExists(const zRecord& record, char letter, bool);

    /// The argument with that id, or null.
    static const char* get_arg1(const zRecord& record, int id);
    static bool is_only_whitespace(const char* text, int length);
    static bool ignore_argument(const char* text);

  private:
    static void add_arg(zRecord& record, const char* text, bool& skip);
    static int find_arg(const zRecord& record, const char* name);
};
