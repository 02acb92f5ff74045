#pragma once

namespace core {

/// Base of small objects that have a class name and are never shared.
class RootClass {
public:
    /// Returns the unqualified class name, a static string.
    virtual char const* ClassName() const;
    virtual ~RootClass();
};

}  // namespace core
