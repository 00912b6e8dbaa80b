#pragma once

#include <zel/CBase.h>
#include <zel/String.h>

#include <map>

namespace zel
{

/// Named properties, ordered by name: what an error tells beside its message. Several threads may
/// read one object as long as none changes it.
class ZEL_EXPORT CProps : public CBase
{
public:
    /// Values by name.
    using Map = std::map<String, String>;

    /// No properties.
    CProps();

    /// A copy has properties of its own.
    CProps(CProps const& other);

    /// Replaces all properties by copies.
    CProps& operator=(CProps const& other) = default;
    ~CProps() override;

    /// Sets the property \p name, replacing a value that it already has.
    void set(String const& name, String const& value);

    /// The value of the property \p name, or \p defaultValue when there is none.
    String get(String const& name, String const& defaultValue) const;

    /// True when there is no property.
    bool isEmpty() const noexcept { return m_values.empty(); }

    /// Pairs of name and value, in ascending order of the names.
    Map::const_iterator begin() const noexcept { return m_values.begin(); }

    /// Behind the last pair.
    Map::const_iterator end() const noexcept { return m_values.end(); }

private:
    Map m_values;
};

} // namespace zel
