// The play list window's controls as the user guide and the tool tips tell
// them, in the order they are registered.
#include <QProgressBar>
#include <QTreeWidget>

#include "controls/CNiButton.h"
#include "playlist/window/CRynCEdit.h"
#include "playlist/window/CRynPlayList.h"

namespace {

// The small title bar of a tool window, in pixels, shown above the client
// area in the guide's picture of this window.
constexpr int kToolCaptionHeight = 15;

}  // namespace

void CRynPlayList::RegisterControls() {
    ComponentRegistry& r = Registry();
    r.SetCaptionHeight(kToolCaptionHeight);
    struct Row {
        QWidget* control;
        const char* title;
        const char* description;
        const char* label;
    };
    const Row rows[] = {
        {rows_, "Play List Control:",
         "The Play List:\ntriange = Item is selected.\nblue object = Item is loaded in "
         "deck.\ngreen object = Item is playing.",
         "Play List"},
        {openList_, "Open List:",
         "This button will display the open file dialog and allow you to open a list.",
         "open list"},
        {addFile_,
         "Add a File:", "This button will display the open file dialog and allow you to add files.",
         "add a file (inserted after selection)"},
        {addFolder_, "Add a Folder:",
         "This button will display the open folder dialog and allow you to add a folder.",
         "add a folder (inserted after selection)"},
        {addList_, "Add a List:",
         "This button will display the open file dialog and allow you to add a list.",
         "add a list (inserted after selection)"},
        {saveAs_, "Save List As:",
         "This button will display the save folder dialog an allow you to save the list.",
         "save as"},
        {save_, "Save List:",
         "This button will save the list with the name on the title bar of the window.",
         "save list"},
        {nameTagPath_, "Name/Tag/Path Button:",
         "Press this to switch between displaying the file name, tag name or path name.",
         "name/tag/path"},
        {delete_, "Delete Item:",
         "This will remove the selected item from the play list.  Hold shift and press this to "
         "delete all of the items.",
         "delete item"},
        {moveUp_, "Move Item Up:", "This will move the selected track up in the play list.",
         "move item up"},
        {moveDown_, "Move Item Down:", "This will move the selected track down in the play list.",
         "move item down"},
        {searchButton_, "Search Button:",
         "Click this button to search for the text in the search field.", "Click to search"},
        {search_, "Text To Search For:", "Type the text you want to search for in this field.",
         "text to search for"},
        {progress_, "Play List Progress Bar:", "Indicates the progress of adding files.",
         "add files status"},
        {selectNone_, "Select No Items:",
         "This button will unselect any selected item.\nIf no item is selected, any item added "
         "will be added to the beginning of the list.\nOtherwise, items added will be added "
         "after the selected item.",
         "select no items"},
    };
    for (const Row& row : rows) {
        r.Register(row.control, this, QString::fromLatin1(row.title),
                   QString::fromLatin1(row.description), QString::fromLatin1(row.label));
    }
}
