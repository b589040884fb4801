#pragma once

#include <string>
#include <variant>

namespace tarvik {

/// The state of one move job. Equal when the case and its payload are the same.
class JobStatus {
public:
    struct Copying {
        /// 0 to 1.
        double progress = 0;
        bool operator==(const Copying&) const = default;
    };
    struct Failed {
        /// What the user sees.
        std::string description;
        bool operator==(const Failed&) const = default;
    };
    struct Pending {
        bool operator==(const Pending&) const = default;
    };
    /// The copy is done and being compared.
    struct Verifying {
        bool operator==(const Verifying&) const = default;
    };
    /// The original is being removed and the link made.
    struct Linking {
        bool operator==(const Linking&) const = default;
    };
    struct Done {
        bool operator==(const Done&) const = default;
    };

    static JobStatus copying(double progress) { return JobStatus(Copying{progress}); }
    static JobStatus failed(std::string description) { return JobStatus(Failed{std::move(description)}); }
    static JobStatus pending() { return JobStatus(Pending{}); }
    static JobStatus verifying() { return JobStatus(Verifying{}); }
    static JobStatus linking() { return JobStatus(Linking{}); }
    static JobStatus done() { return JobStatus(Done{}); }

    JobStatus() = default;

    template <typename Case>
    bool is() const {
        return std::holds_alternative<Case>(m_case);
    }
    /// The payload of a case, or null when the status is another one.
    template <typename Case>
    const Case* get() const {
        return std::get_if<Case>(&m_case);
    }
    /// Done or failed: nothing more happens to the job.
    bool isFinal() const { return is<Done>() || is<Failed>(); }

    bool operator==(const JobStatus&) const = default;

private:
    using Case = std::variant<Pending, Copying, Verifying, Linking, Done, Failed>;
    explicit JobStatus(Case value) : m_case(std::move(value)) {}

    Case m_case = Pending{};
};

}  // namespace tarvik
