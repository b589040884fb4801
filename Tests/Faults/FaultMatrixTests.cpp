#include "Faults/FaultMatrix.h"

#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

using FaultMatrix::Errors;
using FaultMatrix::tryEveryPoint;

}  // namespace

TEST(PlainRenames, AreEnoughForAMove) {
    FaultMatrix::expectDoneWithoutSpecialRenames(Act::move);
}
TEST(PlainRenames, AreEnoughForARestore) {
    FaultMatrix::expectDoneWithoutSpecialRenames(Act::restore);
}

TEST(FaultMatrix, AMoveLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Subject::folder, Act::move, Victim::engine, Errors::several);
}
TEST(FaultMatrix, AMoveLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Subject::folder, Act::move, Victim::copier, Errors::several);
}
TEST(FaultMatrix, AMoveLosesNothingWhenAThreadOfTheCopierFails) {
    tryEveryPoint(Subject::folder, Act::move, Victim::copierThreads, Errors::one);
}
TEST(FaultMatrix, ARestoreLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Subject::folder, Act::restore, Victim::engine, Errors::several);
}
TEST(FaultMatrix, ARestoreLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Subject::folder, Act::restore, Victim::copier, Errors::several);
}
TEST(FaultMatrix, ARestoreLosesNothingWhenAThreadOfTheCopierFails) {
    tryEveryPoint(Subject::folder, Act::restore, Victim::copierThreads, Errors::one);
}

TEST(FaultMatrix, AnApplicationThatMovesLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Subject::application, Act::move, Victim::engine, Errors::one);
}
TEST(FaultMatrix, AnApplicationThatMovesLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Subject::application, Act::move, Victim::copier, Errors::one);
}
TEST(FaultMatrix, AnApplicationThatComesBackLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Subject::application, Act::restore, Victim::engine, Errors::one);
}
TEST(FaultMatrix, AnApplicationThatComesBackLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Subject::application, Act::restore, Victim::copier, Errors::one);
}

TEST(FaultMatrix, AnApplicationBehindALauncherThatComesBackLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Subject::launcher, Act::restore, Victim::engine, Errors::one);
}
TEST(FaultMatrix, AnApplicationBehindALauncherThatComesBackLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Subject::launcher, Act::restore, Victim::copier, Errors::one);
}

TEST(FaultMatrix, ASuiteThatMovesLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Subject::suite, Act::move, Victim::engine, Errors::one);
}
TEST(FaultMatrix, ASuiteThatMovesLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Subject::suite, Act::move, Victim::copier, Errors::one);
}
TEST(FaultMatrix, ASuiteThatComesBackLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Subject::suite, Act::restore, Victim::engine, Errors::one);
}
TEST(FaultMatrix, ASuiteThatComesBackLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Subject::suite, Act::restore, Victim::copier, Errors::one);
}

}  // namespace tarvik::test
