// Page protections, in the same bit encoding as the guest's mmap and as Unicorn.
#pragma once

namespace kvrun {

constexpr unsigned kProtNone = 0;
constexpr unsigned kProtRead = 1;
constexpr unsigned kProtWrite = 2;
constexpr unsigned kProtExec = 4;

} // namespace kvrun
