#pragma once

#include "core/text/String.h"

/// The version record of the application: what its banner and its version texts are built from.
namespace core::version {

enum class CEDevStage {
    unchanged = 0,  ///< leaves the stage as it was
    development = 25,
    alpha = 50,
    beta = 75,
    release = 100,
};

class Record {
public:
    /// Sets name and number; a stage of unchanged leaves the stage alone.
    void init(String const& name, unsigned major, unsigned minor, CEDevStage stage);
    void setNumberText(String const& text);
    void setModelName(String const& name);
    void setDevStage(CEDevStage stage);
    void setDescription(String const& description);
    void setBuild(String const& build);

    /// "1.00", with two digits for the minor number, or the text set in its place.
    String getNumber() const;
    /// The number, and the build behind it when there is one: "1.00 build 7".
    String getNumberAndBuild() const;
    /// "ravelink 1.00", and the stage behind it until release: "ravelink 1.00 beta".
    String getShort() const;
    /// getShort with the model: "ravelink 1.00 (Halvoren)". With withDescription its first line
    /// follows: "ravelink 1.00 (Halvoren) - Ethernet Updater".
    String getLong(bool withDescription) const;
    String const& getDescription() const { return description_; }
    String const& getBuild() const { return build_; }

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
/// Empties it.
void free();

}  // namespace core::version
