#pragma once

#include <zel/CBase.h>
#include <zel/String.h>

#include <list>

namespace zel
{

// Nobody deletes it as the base class without a virtual destructor, of which -Weffc++ warns.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// A doubly linked list that can be shared. Its elements are used as those of a std::list,
/// also as far as threads are concerned.
template <typename T>
class ZEL_EXPORT TList : public std::list<T>, public CBase
{
public:
    using std::list<T>::list;

    /// No elements.
    TList() = default;

    /// A copy is an object of its own, with copies of the elements.
    TList(TList const& other) : std::list<T>(other), CBase() {}

    /// Replaces the elements by copies of the other's.
    TList& operator=(TList const& other) = default;
    ~TList() override = default;
};

#pragma GCC diagnostic pop

extern template class TList<String>;

} // namespace zel
