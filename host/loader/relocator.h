// Applies an object's dynamic relocations in guest memory, resolving symbols in the global scope.
#pragma once

#include "loader/loaded_object.h"
#include "loader/symbol_scope.h"
#include "memory/address_space.h"

namespace kvrun {

// Throws LoadError for a relocation type it does not know or a strong undefined symbol.
void relocate(const LoadedObject &object, const SymbolScope &scope, AddressSpace &memory);

} // namespace kvrun
