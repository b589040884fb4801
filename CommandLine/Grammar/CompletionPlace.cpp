#include "CommandLine/Grammar/CompletionPlace.h"

#include "CommandLine/Grammar/CompletionScripts.h"
#include "HealthRepair/HealthRepairStrategy.h"

#include <algorithm>
#include <string_view>

namespace tarvik::CommandLine {

namespace {

using Kind = CompletionPlace::Kind;

bool looksLikeOption(std::string_view word) {
    return word.size() > 1 && word.front() == '-';
}

/// Follows the words up to the one that is being typed.
class Reading {
public:
    explicit Reading(const CommandDescription& command) : m_command(command), m_verb(&command) {}

    void take(const std::string& word) {
        if (m_awaiting) return takeValue(word);
        if (m_isMarked) return m_place.arguments.push_back(word);
        if (word == "--") {
            m_isMarked = true;
            return;
        }
        if (looksLikeOption(word)) return takeOption(word);
        const auto& verbs = m_verb->verbs;
        const auto verb = std::find_if(verbs.begin(), verbs.end(), [&](const auto& each) { return each.name == word; });
        if (verb != verbs.end())
            m_verb = &*verb;
        else
            m_place.arguments.push_back(word);
    }

    /// The place of the word that is being typed.
    CompletionPlace placeOf(const std::string& typed) {
        m_place.verb = m_verb->words;
        const auto equals = typed.find('=');
        if (m_awaiting) {
            expectValueOf(*m_awaiting);
        } else if (!m_isMarked && typed.starts_with("--") && equals != std::string::npos) {
            m_place.prefix = typed.substr(0, equals + 1);
            if (const auto* option = optionCalled(typed.substr(0, equals))) expectValueOf(*option);
        } else if (!m_isMarked && typed.starts_with('-')) {
            offerOptions(true);
        } else if (const auto* argument = nextArgument()) {
            expect(argument->name);
            if (m_place.arguments.empty() && !m_isMarked) offerVerbs();
        } else if (!m_verb->verbs.empty() && m_verb->arguments.empty()) {
            offerVerbs();
        } else if (!m_isMarked) {
            offerOptions(false);
        }
        return m_place;
    }

private:
    const OptionDescription* optionCalled(const std::string& name) const {
        for (const auto* owner : {m_verb, &m_command})
            for (const auto& option : owner->options)
                if (std::find(option.names.begin(), option.names.end(), name) != option.names.end()) return &option;
        return nullptr;
    }

    void takeOption(const std::string& word) {
        const auto equals = word.find('=');
        const auto* option = optionCalled(word.substr(0, equals));
        if (!option) return;
        m_given.push_back(option);
        if (option->value.empty()) return;
        m_awaiting = option;
        if (equals != std::string::npos) takeValue(word.substr(equals + 1));
    }

    void takeValue(const std::string& value) {
        if (m_awaiting->names.back() == "--root") m_place.root = value;
        if (m_awaiting->names.back() == "--home") m_place.home = value;
        m_awaiting = nullptr;
    }

    const ArgumentDescription* nextArgument() const {
        const auto& arguments = m_verb->arguments;
        if (m_place.arguments.size() < arguments.size()) return &arguments[m_place.arguments.size()];
        return !arguments.empty() && arguments.back().repeats ? &arguments.back() : nullptr;
    }

    void offerVerbs() {
        for (const auto& verb : m_verb->verbs) m_place.candidates.push_back({verb.name, verb.text});
    }

    void offerOptions(bool withGlobal) {
        std::vector<const CommandDescription*> owners = {m_verb};
        if (withGlobal && m_verb != &m_command) owners.push_back(&m_command);
        for (const auto* owner : owners)
            for (const auto& option : owner->options)
                if (std::find(m_given.begin(), m_given.end(), &option) == m_given.end())
                    m_place.candidates.push_back({option.names.back(), option.text});
    }

    void expectValueOf(const OptionDescription& option) { expect(option.value); }

    /// `name` is what help calls a value or an argument.
    void expect(std::string_view name) {
        if (name == "DRIVE") m_place.kind = Kind::drive;
        if (name == "DIR") m_place.kind = Kind::folder;
        if (name == "NAME") m_place.kind = Kind::application;
        if (name == "NAME|PATH") m_place.kind = Kind::applicationOrPath;
        // What moves is a folder.
        if (name == "PATH") m_place.kind = m_place.verb == "move folder" ? Kind::folder : Kind::path;
        if (name == "SOURCE") m_place.kind = Kind::path;
        if (name == "ID")
            m_place.kind = m_awaiting || !m_place.prefix.empty() ? Kind::installerOption : Kind::uninstall;
        if (name == "WHAT") {
            m_place.kind = Kind::path;
            m_place.candidates = {{"receipts", "what installers have noted"},
                                  {"launch-daemons", "what the system starts"},
                                  {"external-target", "the copy on a drive"}};
        }
        if (name == "SHELL")
            for (const auto& shell : CompletionScripts::shells) m_place.candidates.push_back({std::string(shell), {}});
        if (name == "STRATEGY")
            for (const auto& strategy : HealthRepairStrategies::names())
                m_place.candidates.push_back({std::string(strategy), {}});
        if (name == "FORMAT")
            m_place.candidates = {{"human", "for eyes"}, {"tsv", "a line for each record"}, {"toml", "a document"}};
    }

    const CommandDescription& m_command;
    const CommandDescription* m_verb;
    /// The option whose value comes next.
    const OptionDescription* m_awaiting = nullptr;
    std::vector<const OptionDescription*> m_given;
    /// "--" has been typed: nothing is an option any more.
    bool m_isMarked = false;
    CompletionPlace m_place;
};

}  // namespace

CompletionPlace placeIn(const CommandDescription& command, const std::vector<std::string>& words) {
    if (words.empty()) return placeIn(command, {""});
    Reading reading(command);
    std::for_each(words.begin(), words.end() - 1, [&](const std::string& word) { reading.take(word); });
    return reading.placeOf(words.back());
}

}  // namespace tarvik::CommandLine
