#pragma once

namespace core {

/// The light base of small owned objects that have a name and are never shared.
class RootClass {
public:
    /// The bare name of the class; a constant text that nobody frees.
    virtual char const* ClassName() const;
    virtual ~RootClass();
};

}  // namespace core
