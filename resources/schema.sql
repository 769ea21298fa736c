-- The item database. Statements are separated by lines holding only ";;".
-- Money columns hold exact amounts in ten-thousandths (INTEGER); dates hold ISO text
-- "yyyy-mm-dd hh:mm:ss". A value the program could not read as money or date is kept as typed.
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
    DateAuctionStarted  DATETIME,
    DateAuctionEnds     DATETIME,
    DateBuyerContacted  DATE,
    DateBuyerResponded  DATE,
    BuyerEmail          TEXT,
    BuyerName           TEXT,
    BuyerStreet1        TEXT,
    BuyerStreet2        TEXT,
    BuyerStreet3        TEXT,
    BuyerCity           TEXT,
    BuyerState          TEXT,
    BuyerZip            TEXT,
    BuyerPhone          TEXT,
    DatePaymentRecd     DATE,
    DatePaymentClrd     DATE,
    DateItemShipped     DATE,
    ShippingCost        INTEGER,
    InsuranceCost       INTEGER,
    Active              BOOLEAN NOT NULL DEFAULT 1,
    LastPrice           INTEGER,
    LastChecked         DATETIME,
    FeedbackComplete    BOOLEAN NOT NULL DEFAULT 0,
    TrackingNumber      TEXT,
    TransNotes          TEXT
)
;;
CREATE INDEX ItemsByEbayID ON Items (EbayID)
;;
CREATE VIEW ClosedItems AS SELECT * FROM Items WHERE Active = 0
;;
