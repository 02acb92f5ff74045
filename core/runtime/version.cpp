#include "core/runtime/version.h"

namespace core::version {

namespace {

char const* stageWord(CEDevStage stage) {
    switch (stage) {
        case CEDevStage::development:
            return "development";
        case CEDevStage::alpha:
            return "alpha";
        case CEDevStage::beta:
            return "beta";
        default:
            return "";
    }
}

String firstLine(String const& text) {
    int const end = text.Find('\n', 0);
    return end < 0 ? text : text.Left(end).Trim();
}

}  // namespace

void Record::Init(String const& name, unsigned major, unsigned minor, CEDevStage stage) {
    name_ = name;
    major_ = major;
    minor_ = minor;
    numberText_.Clear();
    SetDevStage(stage);
}

void Record::SetNumberText(String const& text) {
    numberText_ = text;
}

void Record::SetModelName(String const& name) {
    modelName_ = name;
}

void Record::SetDevStage(CEDevStage stage) {
    if (stage != CEDevStage::unchanged) {
        stage_ = stage;
    }
}

void Record::SetDescription(String const& description) {
    description_ = description;
}

void Record::SetBuild(String const& build) {
    build_ = build;
}

String Record::GetNumber() const {
    if (numberText_.GetLength() > 0) {
        return numberText_;
    }
    return String::format("%1.%2").argi(1, major_).argi(2, minor_, 2, 10, String::AlignRight, '0');
}

String Record::GetNumberAndBuild() const {
    String const number = GetNumber();
    return build_.GetLength() > 0 ? number.AppendNew(" build ").AppendNew(build_) : number;
}

String Record::GetShort() const {
    String const text = name_.AppendNew(" ").AppendNew(GetNumberAndBuild());
    String const stage(stageWord(stage_));
    return stage.GetLength() > 0 ? text.AppendNew(" ").AppendNew(stage) : text;
}

String Record::GetLong(bool withDescription) const {
    String text = GetShort();
    if (modelName_.GetLength() > 0) {
        text = text.AppendNew(" (").AppendNew(modelName_).AppendNew(")");
    }
    String const description = firstLine(description_);
    return withDescription && description.GetLength() > 0
               ? text.AppendNew(" - ").AppendNew(description)
               : text;
}

Record& record() {
    static auto& theRecord = *new Record;
    return theRecord;
}

void free() {
    record() = Record();
}

}  // namespace core::version
