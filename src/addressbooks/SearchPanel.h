#pragma once

#include "platform/Controls.h"
#include "platform/Ui.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <functional>

class ScreenBuilder;

// The search panel of the address books, fraList: it lies over the entry fields while it is
// shown and holds a search text with its caption, the Search button, the "Show all" check
// box with a caption that takes clicks, and the list of the rows found. What the panel does
// is each screen's own; this only lays it out.
struct SearchPanel {
    ui::Control<QFrame>& fraList;
    ui::Control<QLabel>& lblSearchRef;
    ui::Control<QLineEdit>& txtSearchName;
    ui::Control<platform::CommandButton>& cmdSearch;
    ui::Control<QCheckBox>& chkShowAll;
    ui::Control<QLabel>& lblShowAll;

    // Builds the panel over the fields of `screen`, with `list` in it. A click on the caption
    // "Show all" calls `lblShowAll_Click`.
    template <class List>
    List* build(ScreenBuilder& screen, const QString& searchCaption, ui::Control<List>& list,
                const std::function<void()>& lblShowAll_Click) {
        QFrame* panel = makePanel(screen, searchCaption, lblShowAll_Click);
        List* made = list.make(panel);
        placeList(made);
        return made;
    }

    // After ScreenBuilder::finish: Tab in the panel goes from the search text to Search,
    // "Show all", the list, and on to `nextButton`; the panel hands its focus to the list.
    void orderTabs(QWidget* list, QWidget* nextButton) const;

    // The panel's picture is the main window's icon, given at each load.
    void showPicture() const;

  private:
    QFrame* makePanel(ScreenBuilder& screen, const QString& searchCaption,
                      const std::function<void()>& lblShowAll_Click);
    void placeList(QWidget* list) const;
};

// The click of a "Show all" box, run for every change of its value: while it is checked the
// search text is emptied and closed to typing.
void showAllClicked(const QCheckBox* showAll, QLineEdit* searchText);

// Runs `fill` on a connection of its own, for the Search button: an error is shown with the
// critical icon.
void searchOnOwnConnection(const std::function<void()>& fill);
