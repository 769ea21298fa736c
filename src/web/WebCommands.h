#pragma once

#include <QString>

class QWidget;
struct AppContext;

// Which auction-site page the item window's view menu marks as the one last shown.
enum class SiteView
{
    Listing,
    StartForm,
    ItemPage,
    AllOpenReport
};

// What the auction-site commands need from the item window, which implements it: its boxes, its
// data control and its view menu. The commands do the work; the window only lends these.
class ItemWindowPort
{
public:
    virtual ~ItemWindowPort() = default;
    virtual QString boxText(int index) const = 0;  // txtFields(index) as shown
    virtual QString lengthText() const = 0;        // comboLength
    virtual void saveRecord() = 0;                 // the record being edited goes to tb2.mdb
    virtual void rereadRecord() = 0;               // the bound boxes show the stored values again
    virtual void refreshView() = 0;                // Data1 refreshed, txtCurItem "1"
    virtual void checkSiteView(SiteView view) = 0; // only that view menu item checked
    // The advertisement for the start form (pictures from the web space, markup escaped); "" when
    // the generator refused, after it showed its messages.
    virtual QString startFormListing() = 0;
    virtual void openOptions() = 0;     // not modal
    virtual QWidget* ownerWindow() = 0; // owner of the page download window
};

// Ebay's Start Auction Screen: the site's form filled with the item, left in temp.htm and shown.
void mnuStart_Click(AppContext& ctx, ItemWindowPort& item);
// Ebay's Listing for Item: the item's page read back into its record, then shown.
void mnuEbayList_Click(AppContext& ctx, ItemWindowPort& item);
// Ebay's All Open Item Report: every listed item's price, dates and buyer read back, then shown.
void mnuAllOpenRep_Click(AppContext& ctx, ItemWindowPort& item);
