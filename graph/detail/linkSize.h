// What a merge callback may ask about the link that it is called for.
#pragma once

namespace seedforest::detail {

/// The integers on each element of the union-find whose ufLink() called the merge callback that
/// runs in this thread; -1 where none does.
int dataSizeOfLink();

} // namespace seedforest::detail
