#include "runner/RunnerTest.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using qix::ITestItem;
using testing::ElementsAre;
using testing::IsEmpty;

class RunnerSelection : public test::RunnerTest
{
protected:
    void addItems(std::vector<std::string> const& names)
    {
        for (std::string const& name : names)
        {
            add(name);
        }
    }

    void addFive() { addItems({"zero", "Net one", "two", "internet", "four"}); }

    /// What the line prints.
    std::string apply(std::string const& line)
    {
        test::COutputCapture const mine;
        m_accepted = runner().handleSelectionInput(line);
        return mine.getText();
    }

    std::vector<int> selected()
    {
        std::vector<int> indices;
        for (std::size_t i = 0; i < runner().m_selected.size(); ++i)
        {
            if (runner().m_selected[i])
            {
                indices.push_back(static_cast<int>(i));
            }
        }
        return indices;
    }

    bool m_accepted = false;
};

TEST_F(RunnerSelection, takesNumbersAndRanges)
{
    addFive();
    EXPECT_EQ(apply("1 3-4"), "Num: 1\nRange: 3-4\n");
    EXPECT_TRUE(m_accepted);
    EXPECT_THAT(selected(), ElementsAre(1, 3, 4));
}

TEST_F(RunnerSelection, repeatedNumbersToggle)
{
    addFive();
    EXPECT_EQ(apply("1 1"), "Num: 1\nNum: 1\n");
    EXPECT_TRUE(m_accepted);
    EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(RunnerSelection, backwardRangeIsRefused)
{
    addFive();
    EXPECT_EQ(apply("4-2"), "Invalid range selection: 4-2\nRange: 4-2\n");
    EXPECT_FALSE(m_accepted);
    EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(RunnerSelection, unknownNumberIsRefused)
{
    addFive();
    EXPECT_EQ(apply("7"), "Invalid selection: 7\n");
    EXPECT_FALSE(m_accepted);
    EXPECT_EQ(apply("5"), "Invalid selection: 5\n");
    EXPECT_FALSE(m_accepted);
    EXPECT_EQ(apply("4"), "Num: 4\n");
    EXPECT_TRUE(m_accepted);
}

TEST_F(RunnerSelection, emptyUpperBoundIsZero)
{
    addFive();
    EXPECT_EQ(apply("3-"), "Invalid range selection: 3-\nRange: 3-0\n");
    EXPECT_FALSE(m_accepted);
    EXPECT_EQ(apply("0-"), "Range: 0-0\n");
    EXPECT_TRUE(m_accepted);
    EXPECT_THAT(selected(), ElementsAre(0));
}

TEST_F(RunnerSelection, boundStopsAtTheSecondDash)
{
    addFive();
    EXPECT_EQ(apply("1-2-3"), "Range: 1-2\n");
    EXPECT_THAT(selected(), ElementsAre(1, 2));
}

TEST_F(RunnerSelection, numbersAreDecimal)
{
    addItems({"0", "1", "2", "3", "4", "5", "6", "7", "8"});
    EXPECT_EQ(apply("007"), "Num: 7\n");
    EXPECT_EQ(apply("010"), "Invalid selection: 010\n");
}

TEST_F(RunnerSelection, numbersWrapAround)
{
    addFive();
    EXPECT_EQ(apply("4294967297"), "Num: 1\n");
    EXPECT_EQ(apply("2147483648"), "Invalid selection: 2147483648\n");
    EXPECT_EQ(apply("99999999999999999999"), "Invalid selection: 99999999999999999999\n");
    EXPECT_THAT(selected(), ElementsAre(1));
}

TEST_F(RunnerSelection, refusedRangeTogglesWhatIsInTheList)
{
    addFive();
    EXPECT_EQ(apply("3-7"), "Invalid range selection: 3-7\nRange: 3-7\n");
    EXPECT_FALSE(m_accepted);
    EXPECT_THAT(selected(), ElementsAre(3, 4));
    EXPECT_EQ(apply("7-9"), "Invalid range selection: 7-9\nRange: 7-9\n");
    EXPECT_THAT(selected(), ElementsAre(3, 4));
}

TEST_F(RunnerSelection, refusedRangeCostsWhatTheListCosts)
{
    addFive();
    for (int i = 0; i < 1001; ++i)
    {
        EXPECT_EQ(apply("0-2000000000"),
                  "Invalid range selection: 0-2000000000\nRange: 0-2000000000\n");
    }
    EXPECT_THAT(selected(), ElementsAre(0, 1, 2, 3, 4));
    apply("0-2147483647");
    EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(RunnerSelection, refusedRangeMayBeginBelowTheList)
{
    addFive();
    EXPECT_EQ(apply("4294967294-1"), "Invalid range selection: 4294967294-1\nRange: -2-1\n");
    EXPECT_FALSE(m_accepted);
    EXPECT_THAT(selected(), ElementsAre(0, 1));
    EXPECT_EQ(apply("2147483648-2147483649"),
              "Invalid range selection: 2147483648-2147483649\nRange: -2147483648--2147483647\n");
    EXPECT_THAT(selected(), ElementsAre(0, 1));
}

TEST_F(RunnerSelection, rangeInAnEmptyListIsRefused)
{
    EXPECT_EQ(apply("0-0"), "Invalid range selection: 0-0\nRange: 0-0\n");
    EXPECT_FALSE(m_accepted);
}

TEST_F(RunnerSelection, nothingIsRefused)
{
    addFive();
    EXPECT_EQ(apply(""), "Nothing selected.\n");
    EXPECT_FALSE(m_accepted);
    EXPECT_EQ(apply("   "), "Nothing selected.\n");
    EXPECT_FALSE(m_accepted);
}

TEST_F(RunnerSelection, starTogglesEverything)
{
    addFive();
    EXPECT_EQ(apply("* 2"), "Num: 2\n");
    EXPECT_TRUE(m_accepted);
    EXPECT_THAT(selected(), ElementsAre(0, 1, 3, 4));
    EXPECT_EQ(apply("* *"), "");
    EXPECT_TRUE(m_accepted);
    EXPECT_THAT(selected(), ElementsAre(0, 1, 3, 4));
}

TEST_F(RunnerSelection, plusesRaiseTheLimitOnly)
{
    addFive();
    EXPECT_EQ(apply("+"), "");
    EXPECT_TRUE(m_accepted);
    EXPECT_EQ(runner().m_maxDuration, 2);
    apply("++");
    EXPECT_EQ(runner().m_maxDuration, 3);
    apply("+ +++ +");
    EXPECT_EQ(runner().m_maxDuration, 4);
    EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(RunnerSelection, lettersSetTheInteractiveFlags)
{
    addFive();
    EXPECT_EQ(apply("i"), "");
    EXPECT_TRUE(m_accepted);
    EXPECT_TRUE(runner().m_runInteractive);
    EXPECT_FALSE(runner().m_onlyInteractive);
    EXPECT_EQ(apply("I"), "");
    EXPECT_TRUE(m_accepted);
    EXPECT_TRUE(runner().m_onlyInteractive);
}

TEST_F(RunnerSelection, onlyInteractiveIncludesInteractive)
{
    apply("I");
    EXPECT_TRUE(runner().m_runInteractive);
    EXPECT_TRUE(runner().m_onlyInteractive);
}

TEST_F(RunnerSelection, numbersAndWordsShareAToken)
{
    addFive();
    EXPECT_EQ(apply("3+"), "Num: 3\n");
    EXPECT_TRUE(m_accepted);
    EXPECT_EQ(runner().m_maxDuration, 2);
    EXPECT_EQ(apply("2-4+++"), "Range: 2-4\n");
    EXPECT_EQ(runner().m_maxDuration, 4);
    EXPECT_THAT(selected(), ElementsAre(2, 4));
    EXPECT_EQ(apply("0i"), "Num: 0\n");
    EXPECT_TRUE(runner().m_runInteractive);
    EXPECT_EQ(apply("0net"),
              "Num: 0\nSearch term: net\n\nSearch results:\n(1) Net one\n(3) internet\n");
    EXPECT_FALSE(m_accepted);
}

TEST_F(RunnerSelection, signedWordsSelectAndDeselect)
{
    addFive();
    for (int repeated = 0; repeated < 2; ++repeated)
    {
        EXPECT_EQ(apply("+NET"), "Search select: +net\n+ 1 Net one\n+ 3 internet\n");
        EXPECT_TRUE(m_accepted);
        EXPECT_THAT(selected(), ElementsAre(1, 3));
    }
    apply("0");
    EXPECT_EQ(apply("-net"), "Search select: -net\n- 1 Net one\n- 3 internet\n");
    EXPECT_TRUE(m_accepted);
    EXPECT_THAT(selected(), ElementsAre(0));
}

TEST_F(RunnerSelection, negativeNumbersAreWords)
{
    addItems({"test3", "test4"});
    apply("*");
    EXPECT_EQ(apply("-3"), "Search select: -3\n- 0 test3\n");
    EXPECT_THAT(selected(), ElementsAre(1));
}

TEST_F(RunnerSelection, loneMinusDeselectsEverything)
{
    addItems({"a", "b"});
    apply("*");
    EXPECT_EQ(apply("-"), "Search select: -\n- 0 a\n- 1 b\n");
    EXPECT_TRUE(m_accepted);
    EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(RunnerSelection, fourPlusesAreAWord)
{
    addItems({"a+++b", "c"});
    EXPECT_EQ(apply("++++"), "Search select: ++++\n+ 0 a+++b\n");
    EXPECT_EQ(runner().m_maxDuration, 1);
}

TEST_F(RunnerSelection, plainWordsListAndAreRefused)
{
    addFive();
    EXPECT_EQ(apply("NET"), "Search term: net\n\nSearch results:\n(1) Net one\n(3) internet\n");
    EXPECT_FALSE(m_accepted);
    EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(RunnerSelection, resultsAreListedAfterEveryTokenAndBlank)
{
    addFive();
    std::string const both = "\nSearch results:\n(1) Net one\n(3) internet\n";
    std::string const one = "\nSearch results:\n(1) Net one\n";
    EXPECT_EQ(apply("net one "),
              "Search term: net\n" + both + both + "Search term: one\n" + one + one);
}

TEST_F(RunnerSelection, listedLineStillSelects)
{
    addFive();
    apply("0 nothing 2");
    EXPECT_FALSE(m_accepted);
    EXPECT_THAT(selected(), ElementsAre(0, 2));
}

TEST_F(RunnerSelection, searchTermsLiveForOneLine)
{
    addFive();
    apply("net");
    EXPECT_EQ(apply("four"), "Search term: four\n\nSearch results:\n(4) four\n");
}

TEST_F(RunnerSelection, onlyBlanksSeparate)
{
    addFive();
    EXPECT_EQ(apply("1\t2"), "Num: 1\nSearch term: \t2\n\nSearch results:\n");
    EXPECT_FALSE(m_accepted);
}

TEST_F(RunnerSelection, dashBehindTheNumbersEndsTheCall)
{
    addFive();
    try
    {
        runner().handleSelectionInput("1 12ab-x 2");
        FAIL() << "no error";
    }
    catch (std::out_of_range const& e)
    {
        EXPECT_THAT(e.what(), testing::StartsWith("basic_string::substr"));
    }
    EXPECT_THAT(selected(), ElementsAre(1));
}

TEST_F(RunnerSelection, refusedTokensLeaveTheOthersInForce)
{
    addFive();
    EXPECT_EQ(apply("9 1 + 4-2 2"), "Invalid selection: 9\nNum: 1\n"
                                    "Invalid range selection: 4-2\nRange: 4-2\nNum: 2\n");
    EXPECT_FALSE(m_accepted);
    EXPECT_THAT(selected(), ElementsAre(1, 2));
    EXPECT_EQ(runner().m_maxDuration, 2);
}

TEST_F(RunnerSelection, operationsChangeTheirFieldsOnly)
{
    addFive();
    runner().toggleItem(3);
    EXPECT_THAT(selected(), ElementsAre(3));
    runner().toggleAll();
    EXPECT_THAT(selected(), ElementsAre(0, 1, 2, 4));
    runner().enableTestsUpToDuration(ITestItem::VeryLong);
    runner().enableTestsUpToDuration(ITestItem::Long);
    EXPECT_EQ(runner().m_maxDuration, 3);
    runner().disableNonInteractiveTests();
    EXPECT_FALSE(runner().m_runInteractive);
    EXPECT_TRUE(runner().m_onlyInteractive);
}

TEST_F(RunnerSelection, nullItemsHaveANameToo)
{
    add("a");
    addNull();
    EXPECT_EQ(apply("+null"), "Search select: +null\n+ 1 (null)\n");
    EXPECT_THAT(selected(), ElementsAre(1));
}

TEST_F(RunnerSelection, findsByAllTerms)
{
    addItems({"Alpha", "beta", "ALPHABET"});
    EXPECT_THAT(runner().findItems({"alpha"}), ElementsAre(0, 2));
    EXPECT_THAT(runner().findItems({"alpha", "bet"}), ElementsAre(2));
    EXPECT_THAT(runner().findItems({"bet", "alpha"}), ElementsAre(2));
    EXPECT_THAT(runner().findItems({"Alpha"}), IsEmpty());
}

TEST_F(RunnerSelection, termsMayOverlap)
{
    addItems({"network"});
    EXPECT_THAT(runner().findItems({"net", "et"}), ElementsAre(0));
}

TEST_F(RunnerSelection, noTermsFindEverything)
{
    addItems({"a", "b", ""});
    EXPECT_THAT(runner().findItems({}), ElementsAre(0, 1, 2));
    EXPECT_THAT(runner().findItems({""}), ElementsAre(0, 1, 2));
}

TEST_F(RunnerSelection, emptyListHasNothingToFind)
{
    EXPECT_THAT(runner().findItems({}), IsEmpty());
    EXPECT_THAT(runner().findItems({"a"}), IsEmpty());
}

TEST_F(RunnerSelection, bytesAbove127AreLeftAsTheyAre)
{
    addItems({"\xc3\x9c"
              "BER",
              "\xc3\xbc"
              "ber"});
    EXPECT_THAT(runner().findItems({"\xc3\x9c"
                                    "ber"}),
                ElementsAre(0));
    EXPECT_THAT(runner().findItems({"\xc3\xbc"
                                    "ber"}),
                ElementsAre(1));
}

TEST_F(RunnerSelection, childrenOfGroupsAreNotFound)
{
    addTo(addGroup("group"), "child");
    EXPECT_THAT(runner().findItems({"child"}), IsEmpty());
    EXPECT_THAT(runner().findItems({"group"}), ElementsAre(0));
}

} // namespace
