-- The item database. Statements are separated by lines holding only ";;".
-- Money columns hold exact amounts in ten-thousandths (INTEGER); dates hold ISO text
-- "yyyy-mm-dd hh:mm:ss" in TEXT columns, so a date typed in a form the program cannot read
-- is kept exactly as typed. A money text the program cannot read is kept as typed too.
CREATE TABLE Items (
    ID                  INTEGER PRIMARY KEY AUTOINCREMENT,
    EbayID              TEXT,
    Category            TEXT,
    ShortDescription    TEXT,
    Description         TEXT,
    Picture1Path        TEXT,
    Picture2Path        TEXT,
    Picture3Path        TEXT,
    Reserve             INTEGER,
    MinBid              INTEGER,
    Cost                INTEGER,
    SalePrice           INTEGER,
    DateAuctionStarted  TEXT,
    DateAuctionEnds     TEXT,
    DateBuyerContacted  TEXT,
    DateBuyerResponded  TEXT,
    BuyerEmail          TEXT,
    BuyerName           TEXT,
    BuyerStreet1        TEXT,
    BuyerStreet2        TEXT,
    BuyerStreet3        TEXT,
    BuyerCity           TEXT,
    BuyerState          TEXT,
    BuyerZip            TEXT,
    BuyerPhone          TEXT,
    DatePaymentRecd     TEXT,
    DatePaymentClrd     TEXT,
    DateItemShipped     TEXT,
    ShippingCost        INTEGER,
    InsuranceCost       INTEGER,
    Active              BOOLEAN NOT NULL DEFAULT 1,
    LastPrice           INTEGER,
    LastChecked         TEXT,
    FeedbackComplete    BOOLEAN NOT NULL DEFAULT 0,
    TrackingNumber      TEXT,
    TransNotes          TEXT
)
;;
CREATE INDEX ItemsByEbayID ON Items (EbayID)
;;
CREATE INDEX ItemsByActive ON Items (Active)
;;
CREATE INDEX ItemListByDateAuctionEnds ON Items (DateAuctionEnds, Active)
;;
CREATE VIEW ClosedItems AS SELECT * FROM Items WHERE Active = 0
;;
