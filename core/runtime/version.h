#pragma once

#include "core/text/String.h"

/// The version record of the application, from which the banner and the version texts are built.
namespace core::version {

enum class CEDevStage {
    unchanged = 0,  ///< keeps the current stage
    development = 25,
    alpha = 50,
    beta = 75,
    release = 100,
};

/// The parts of the version texts. Not thread-safe.
class Record {
public:
    /// Sets name and number and removes a number text; CEDevStage::unchanged keeps the stage.
    void Init(String const& name, unsigned major, unsigned minor, CEDevStage stage);
    /// Replaces the number by a text; an empty one restores it.
    void SetNumberText(String const& text);
    void SetModelName(String const& name);
    void SetDevStage(CEDevStage stage);
    void SetDescription(String const& description);
    void SetBuild(String const& build);

    /// Returns "1.00", with at least two digits for the minor number, or the number text.
    String GetNumber() const;
    /// Returns the number and the build, if any: "1.00 build 7".
    String GetNumberAndBuild() const;
    /// Returns name, number, build and, before release, stage: "ravelink 1.00 beta".
    String GetShort() const;
    /// Returns GetShort() and the model, if any: "ravelink 1.00 (Halvoren)". With withDescription
    /// the first line of the description, if any, follows:
    /// "ravelink 1.00 (Halvoren) - Ethernet Updater".
    String GetLong(bool withDescription) const;
    String const& GetDescription() const { return description_; }
    String const& GetBuild() const { return build_; }

private:
    String name_;
    String numberText_;
    String modelName_;
    String description_;
    String build_;
    unsigned major_ = 0;
    unsigned minor_ = 0;
    CEDevStage stage_ = CEDevStage::release;
};

/// The record of this process.
Record& record();
/// Resets the record to its initial state.
void free();

}  // namespace core::version
