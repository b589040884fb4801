#include "Platform/Files/Files.h"
#include "pkgutil/PackageSignature.h"
#include "pkgutil/Pattern.h"
#include "pkgutil/Receipts.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Tells and forgets receipts of packages, and tells who has signed a package, as a Mac's pkgutil(1) does, on the
// machine in the folder that the environment variable TARVIK_ROOT names; without one there are no packages.
//
//     pkgutil --pkgs | --pkgs=REGEXP | --files ID | --forget ID | --check-signature PACKAGE
//
// The manual page tells what these do, and neither words nor exit statuses. Both are from published sessions:
// - "No receipt for 'ID' found at '/'." and status 1 for a package that is not there; status 1, and no words, when no
//   package fits a pattern.
// - A receipt that cannot be removed is told of on standard error, and then the tool says that the package is
//   forgotten all the same. The sessions do not show the status. It is 0 here: whoever believes it is wrong.
// - The words about a signature. The sessions show no status for a package that is signed and not trusted. It is 1
// here,
//   as for one without a signature.
// What differs, and why nothing may count on it:
// - Trusted are the certificates that lie as files, PEM or DER, in the machine's Library/Keychains/TrustedCertificates,
//   and no others. No notary and no other machine is asked, and a time stamp counts for nothing.
// - On a Mac only root may forget a receipt. Here it is whoever may write in the receipts' folder.
// - A bill of materials is a text (see `Receipts`). No other command and no option is understood.

namespace {

namespace Receipts = tarvik::pkgutil::Receipts;
using Receipts::Receipt;

/// The status for everything that went wrong, wrong usage too.
constexpr int failed = 1;

std::vector<Receipt> receipts() {
    const char* root = std::getenv("TARVIK_ROOT");
    return Receipts::of(root ? std::optional<tarvik::fs::path>(root) : std::nullopt);
}

int listAll() {
    for (const Receipt& receipt : receipts()) std::puts(receipt.identifier.c_str());
    return 0;
}

int listFitting(const std::string& text) {
    const tarvik::pkgutil::Pattern pattern(text);
    if (!pattern.complaint().empty()) {
        std::fprintf(stderr, "Invalid regular expression '%s': %s\n", text.c_str(), pattern.complaint().c_str());
        return failed;
    }
    int status = failed;
    for (const Receipt& receipt : receipts()) {
        if (!pattern.fits(receipt.identifier)) continue;
        std::puts(receipt.identifier.c_str());
        status = 0;
    }
    return status;
}

std::optional<Receipt> receiptOf(const std::string& identifier) {
    const auto all = receipts();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Receipt& each) { return each.identifier == identifier; });
    if (found != all.end()) return *found;
    std::fprintf(stderr, "No receipt for '%s' found at '/'.\n", identifier.c_str());
    return std::nullopt;
}

int listFiles(const std::string& identifier) {
    const auto receipt = receiptOf(identifier);
    if (!receipt) return failed;
    for (const std::string& path : Receipts::paths(*receipt)) std::puts(path.c_str());
    return 0;
}

void complain(const Receipts::Refusal& refusal) {
    const bool isForbidden = refusal.errnoValue == EACCES || refusal.errnoValue == EPERM;
    std::fprintf(stderr,
                 "Unknown error Error Domain=NSCocoaErrorDomain Code=%d \"\u201C%s\u201D couldn\u2019t be removed%s.\" "
                 "UserInfo={NSFilePath=%s, NSUnderlyingError={Error Domain=NSPOSIXErrorDomain Code=%d \"%s\"}}.\n",
                 isForbidden ? 513 : 4, refusal.file.filename().c_str(),
                 isForbidden ? " because you don\u2019t have permission to access it" : "", refusal.file.c_str(),
                 refusal.errnoValue, std::strerror(refusal.errnoValue));
}

int forget(const std::string& identifier) {
    const auto receipt = receiptOf(identifier);
    if (!receipt) return failed;
    for (const auto& refusal : Receipts::forget(*receipt)) complain(refusal);
    std::printf("Forgot package '%s' on '/'.\n", identifier.c_str());
    return 0;
}

int checkSignature(const tarvik::fs::path& package) {
    namespace PackageSignature = tarvik::pkgutil::PackageSignature;
    if (!tarvik::Files::exists(package)) {
        std::fprintf(stderr, "Could not open package: %s\n", package.c_str());
        return failed;
    }
    const char* root = std::getenv("TARVIK_ROOT");
    const auto machine = root ? tarvik::Files::resolved(root) : std::nullopt;
    const auto trusted = machine ? std::optional(*machine / "Library/Keychains/TrustedCertificates") : std::nullopt;
    const auto judgement = PackageSignature::judged(package, trusted);
    std::fputs(PackageSignature::described(package, judgement).c_str(), stdout);
    const bool isTrusted = judgement.status == PackageSignature::Status::trusted ||
                           judgement.status == PackageSignature::Status::developer;
    return isTrusted ? 0 : failed;
}

/// What a word like "--pkgs=REGEXP" says behind its beginning.
std::optional<std::string> valueOf(std::string_view word, std::string_view beginning) {
    if (!word.starts_with(beginning)) return std::nullopt;
    return std::string(word.substr(beginning.size()));
}

int answer(const std::vector<std::string_view>& words) {
    if (words.size() == 1 && (words[0] == "--pkgs" || words[0] == "--packages")) return listAll();
    if (words.size() == 1)
        if (const auto pattern = valueOf(words[0], "--pkgs=")) return listFitting(*pattern);
    if (words.size() == 2 && words[0] == "--files") return listFiles(std::string(words[1]));
    if (words.size() == 2 && words[0] == "--forget") return forget(std::string(words[1]));
    if (words.size() == 2 && words[0] == "--check-signature") return checkSignature(words[1]);
    std::fputs(
        "Usage: pkgutil --pkgs | --pkgs=REGEXP | --files package-id | --forget package-id | --check-signature "
        "package\n",
        stderr);
    return failed;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return answer({argv + 1, argv + argc});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return failed;
    }
}
