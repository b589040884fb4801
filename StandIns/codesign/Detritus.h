#pragma once

/// What a strict check allows no file of a bundle to carry: Finder information and resource forks, which no seal
/// covers. Source: Apple's Technical Q&A QA1940. They are extended attributes; another system that reads a Mac's disk
/// puts a namespace before their names.
namespace tarvik::codesign::Detritus {

/// Whether an open item carries any. What does not tell its attributes has none.
bool isOn(int item);

}  // namespace tarvik::codesign::Detritus
