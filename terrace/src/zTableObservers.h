#pragma once

#include <memory>
#include <vector>

#include "zBonsai.h"
#include "zList.h"

/// Who watches what in a table: entries of an observer's id with a record, a variable, both or neither.
class zTableObservers {
  public:
    /// As a record or a variable: all of them.
    static constexpr int kAny = -1;
    static constexpr unsigned int kAnyVariable = 0xFFFFFFFF;

    /// Observer ids, each once, in the order in which they were found.
    using IDs = std::vector<int>;

    /// Always 0. Entries for everything stand as often as they were added, all others once.
    int Add(int observer, int record, unsigned int variable);
    /// 0, or -1 where there are such entries but not this one.
    int Remove(int observer, int record, unsigned int variable);

    /// Whether a change of this variable of this record concerns anyone. Where nobody ever watched, it costs
    /// four null tests.
    bool Has(int record, unsigned int variable) const {
        return (fAll && !fAll->IsEmpty()) || (fByRecord && has_record(record)) ||
               (fByVariable && has_variable(variable)) ||
               (fByRecordAndVariable && has_pair(record, variable));
    }

    void FindAll(IDs& ids) const;
    void Find(IDs& ids, int record, unsigned int variable) const;

  private:
    bool has_record(int record) const;
    bool has_variable(unsigned int variable) const;
    bool has_pair(int record, unsigned int variable) const;

    // Each is made at its first use.
    std::unique_ptr<zList<int>> fAll;
    std::unique_ptr<zBonsai> fByRecord;
    std::unique_ptr<zBonsai> fByVariable;
    std::unique_ptr<zBonsai> fByRecordAndVariable;
};
