#include "Signatures/SignatureFailure.h"

namespace tarvik::signatures {

namespace {

std::string textOf(const fs::path& item, std::string_view sentence, const std::vector<std::string>& details) {
    std::string text = item.native() + ": ";
    text += sentence;
    for (const std::string& detail : details) text += "\n" + detail;
    return text;
}

}  // namespace

SignatureFailure::SignatureFailure(const fs::path& item, std::string_view sentence,
                                   const std::vector<std::string>& details)
    : Failure("codesign", 1, textOf(item, sentence, details)), m_sentence(sentence), m_details(details) {}

SignatureFailure SignatureFailure::ofPart(const fs::path& whole, const SignatureFailure& ofPart, const fs::path& part) {
    std::vector<std::string> details;
    // The innermost part is the one to look at.
    if (ofPart.details().empty() || !ofPart.details().front().starts_with("In subcomponent: "))
        details.push_back("In subcomponent: " + part.native());
    details.insert(details.end(), ofPart.details().begin(), ofPart.details().end());
    return {whole, ofPart.sentence(), details};
}

}  // namespace tarvik::signatures
