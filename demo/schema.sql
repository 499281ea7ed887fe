-- The tables of the reference data access, in SQL that SQLite, PostgreSQL and MariaDB take. A column bears the name of the
-- getter that reads it; "I" columns are actual figures, "S" and "s" columns target figures. Amounts are in the company's
-- currency ("DM" in a name is historical), rates and shares in percent, times in hours or days.

CREATE TABLE firma (
    fnr DOUBLE PRECISION NOT NULL PRIMARY KEY,
    name1 TEXT, name2 TEXT, name3 TEXT, kurzbez TEXT,
    strasse TEXT, postfach TEXT,
    plz DOUBLE PRECISION, -- a number: a leading zero is not kept
    ort TEXT, land TEXT,
    bundesland TEXT,      -- as in feiertage
    telefon1 TEXT, telefon2 TEXT, fax TEXT,
    waehrung TEXT
);

-- Turnover by year, with its months.
CREATE TABLE umsatz (
    fnr DOUBLE PRECISION NOT NULL REFERENCES firma (fnr),
    jahr DOUBLE PRECISION NOT NULL,
    iumsatzdm DOUBLE PRECISION,
    iumsatzdm_01 DOUBLE PRECISION, iumsatzdm_02 DOUBLE PRECISION, iumsatzdm_03 DOUBLE PRECISION,
    iumsatzdm_04 DOUBLE PRECISION, iumsatzdm_05 DOUBLE PRECISION, iumsatzdm_06 DOUBLE PRECISION,
    iumsatzdm_07 DOUBLE PRECISION, iumsatzdm_08 DOUBLE PRECISION, iumsatzdm_09 DOUBLE PRECISION,
    iumsatzdm_10 DOUBLE PRECISION, iumsatzdm_11 DOUBLE PRECISION, iumsatzdm_12 DOUBLE PRECISION,
    sumsatzdm DOUBLE PRECISION,
    sumsatzdm_01 DOUBLE PRECISION, sumsatzdm_02 DOUBLE PRECISION, sumsatzdm_03 DOUBLE PRECISION,
    sumsatzdm_04 DOUBLE PRECISION, sumsatzdm_05 DOUBLE PRECISION, sumsatzdm_06 DOUBLE PRECISION,
    sumsatzdm_07 DOUBLE PRECISION, sumsatzdm_08 DOUBLE PRECISION, sumsatzdm_09 DOUBLE PRECISION,
    sumsatzdm_10 DOUBLE PRECISION, sumsatzdm_11 DOUBLE PRECISION, sumsatzdm_12 DOUBLE PRECISION,
    PRIMARY KEY (fnr, jahr)
);

-- The company's settings of a year. Rates are the full rates, employer and employee together.
CREATE TABLE firma_jahre (
    fnr DOUBLE PRECISION NOT NULL REFERENCES firma (fnr),
    jahr DOUBLE PRECISION NOT NULL,
    anzahlfeiertage DOUBLE PRECISION, anzahlfeiertageson DOUBLE PRECISION, anzahlfeiertagesam DOUBLE PRECISION,
    jahrestage DOUBLE PRECISION, anzahlsonntage DOUBLE PRECISION, anzahlsamstage DOUBLE PRECISION,
    arbeitstage01 DOUBLE PRECISION, arbeitstage02 DOUBLE PRECISION, arbeitstage03 DOUBLE PRECISION,
    arbeitstage04 DOUBLE PRECISION, arbeitstage05 DOUBLE PRECISION, arbeitstage06 DOUBLE PRECISION,
    arbeitstage07 DOUBLE PRECISION, arbeitstage08 DOUBLE PRECISION, arbeitstage09 DOUBLE PRECISION,
    arbeitstage10 DOUBLE PRECISION, arbeitstage11 DOUBLE PRECISION, arbeitstage12 DOUBLE PRECISION,
    grenzerentenversicherung DOUBLE PRECISION, -- contribution limit per month
    grenzeaushilfskraft DOUBLE PRECISION,      -- per month
    grenzegeringverdiener DOUBLE PRECISION,    -- per month
    arbeitslosenversicherung DOUBLE PRECISION,
    pflegeversicherung DOUBLE PRECISION,
    krankenversicherung DOUBLE PRECISION,      -- general rate and average additional rate
    rentenversicherung DOUBLE PRECISION,
    steuersatzaushilfe DOUBLE PRECISION,
    tagesarbeitszeit DOUBLE PRECISION,         -- hours
    durchueberstundenzuschlag DOUBLE PRECISION,
    erstattungsumlage DOUBLE PRECISION,
    krankheitstage DOUBLE PRECISION,
    vorgabeurlaubsgeld DOUBLE PRECISION,       -- percent of a month's pay
    urlaubstage DOUBLE PRECISION,
    vorgabeweihnachtsgeld DOUBLE PRECISION,    -- percent of a month's pay
    vwl DOUBLE PRECISION,                      -- amount per month
    PRIMARY KEY (fnr, jahr)
);

-- Public holidays by federal state.
CREATE TABLE feiertage (
    bundesland VARCHAR(50) NOT NULL,
    jahr DOUBLE PRECISION NOT NULL,
    fdatum DATE NOT NULL,
    feiertag TEXT NOT NULL,
    PRIMARY KEY (bundesland, jahr, fdatum)
);

-- Employees.
CREATE TABLE mitarbeiter (
    fnr DOUBLE PRECISION NOT NULL REFERENCES firma (fnr),
    nummer DOUBLE PRECISION NOT NULL,
    anrede TEXT, vorname TEXT, name TEXT, name3 TEXT,
    art TEXT,   -- kind of employment
    stand TEXT, -- marital status
    geburtsdatum DATE, eintrittsdatum DATE, austrittsdatum DATE,
    strasse TEXT, plz DOUBLE PRECISION, ort TEXT, land TEXT,
    telefon1 TEXT, telefon2 TEXT, telefon3 TEXT, fax TEXT, email TEXT, homepage TEXT,
    beztel1 TEXT, beztel2 TEXT, beztel3 TEXT, bezfax TEXT, bezemail TEXT, bezhomepage TEXT,
    PRIMARY KEY (fnr, nummer)
);

-- An employee's contract and calculation of a year.
CREATE TABLE mitarbeiter_jahre (
    fnr DOUBLE PRECISION NOT NULL,
    nummer DOUBLE PRECISION NOT NULL,
    fjahr DOUBLE PRECISION NOT NULL,
    anzahlma DOUBLE PRECISION,      -- the employee as a part of a full post
    sanzahlmapr DOUBLE PRECISION, ianzahlmapr DOUBLE PRECISION, -- productive part of it, percent
    gehalt DOUBLE PRECISION,        -- per month, 0 for hourly pay
    stdlohn DOUBLE PRECISION,       -- per hour
    erhabmon DOUBLE PRECISION, erhabmondm DOUBLE PRECISION, erhabmonpr DOUBLE PRECISION,    -- rise: from month, by
    praeabmon DOUBLE PRECISION, praeabmondm DOUBLE PRECISION, praeabmonpr DOUBLE PRECISION, -- bonus: from month
    tazeit DOUBLE PRECISION,        -- daily working time
    tazeitabmon DOUBLE PRECISION, tazeitabstd DOUBLE PRECISION, -- another daily working time from a month on
    ruebpr DOUBLE PRECISION, ruebstd DOUBLE PRECISION,          -- overtime: premium and hours
    nberpr DOUBLE PRECISION, nberstd DOUBLE PRECISION,          -- hours that can't be charged
    prodzupr DOUBLE PRECISION,      -- premium on productive wages
    ianwberstd DOUBLE PRECISION, sanwberstd DOUBLE PRECISION,   -- chargeable hours of attendance
    ibezstd DOUBLE PRECISION, sbezstd DOUBLE PRECISION,         -- paid hours
    ibezstdprod DOUBLE PRECISION, sbezstdprod DOUBLE PRECISION, -- productive part of the paid hours
    igesprodstd DOUBLE PRECISION, sgesprodstd DOUBLE PRECISION, -- productive hours with overtime
    iprodlk DOUBLE PRECISION, sprodlk DOUBLE PRECISION,         -- productive wage costs
    iunprodlk DOUBLE PRECISION, sunprodlk DOUBLE PRECISION,     -- unproductive wage costs
    istdverdm DOUBLE PRECISION, sstdverdm DOUBLE PRECISION,     -- hourly rate charged
    ipstdverdm DOUBLE PRECISION,                                -- wage costs per chargeable hour
    ikalkulohn DOUBLE PRECISION, skalkulohn DOUBLE PRECISION,   -- imputed entrepreneur's wage
    kostensatzhw DOUBLE PRECISION,                              -- cost rate of the trade
    PRIMARY KEY (fnr, nummer, fjahr),
    FOREIGN KEY (fnr, nummer) REFERENCES mitarbeiter (fnr, nummer)
);

-- An employee's costs and times of a month; month 13 is the year's total.
CREATE TABLE mitarbeiter_monate (
    fnr DOUBLE PRECISION NOT NULL,
    nummer DOUBLE PRECISION NOT NULL,
    fjahr DOUBLE PRECISION NOT NULL,
    monat DOUBLE PRECISION NOT NULL CHECK (monat BETWEEN 1 AND 13),
    ibrutto DOUBLE PRECISION, sbrutto DOUBLE PRECISION,       -- gross pay
    ivwl DOUBLE PRECISION, svwl DOUBLE PRECISION,             -- capital-forming benefits
    iurl DOUBLE PRECISION, surl DOUBLE PRECISION,             -- holiday pay
    iwg DOUBLE PRECISION, swg DOUBLE PRECISION,               -- Christmas bonus
    isonst DOUBLE PRECISION, ssonst DOUBLE PRECISION,         -- other pay
    ibruttoges DOUBLE PRECISION, sbruttoges DOUBLE PRECISION, -- the five above, added up from January on
    irv DOUBLE PRECISION, srv DOUBLE PRECISION,               -- employer's shares: pension, …
    ikv DOUBLE PRECISION, skv DOUBLE PRECISION,               -- health, …
    iav DOUBLE PRECISION, sav DOUBLE PRECISION,               -- unemployment, …
    ipflege DOUBLE PRECISION, spflege DOUBLE PRECISION,       -- and care insurance
    ierst DOUBLE PRECISION, serst DOUBLE PRECISION,           -- reimbursement levy
    irueck DOUBLE PRECISION, srueck DOUBLE PRECISION,         -- provisions for leave not taken
    iarbtage DOUBLE PRECISION, sarbtage DOUBLE PRECISION,     -- working days
    iurlt DOUBLE PRECISION, surlt DOUBLE PRECISION,           -- days of leave
    ikrank DOUBLE PRECISION, skrank DOUBLE PRECISION,         -- days of sickness
    iausb DOUBLE PRECISION, sausb DOUBLE PRECISION,           -- days of training
    isonsttage DOUBLE PRECISION, ssonsttage DOUBLE PRECISION, -- other days off
    ianwtage DOUBLE PRECISION, sanwtage DOUBLE PRECISION,     -- days of attendance
    ianwstd DOUBLE PRECISION, sanwstd DOUBLE PRECISION,       -- hours of attendance
    iadmpr DOUBLE PRECISION, sadmpr DOUBLE PRECISION,         -- administrative part of them, percent
    iadmstd DOUBLE PRECISION, sadmstd DOUBLE PRECISION,       -- administrative hours
    iprodstd DOUBLE PRECISION, sprodstd DOUBLE PRECISION,     -- productive hours
    iuebstd DOUBLE PRECISION, suebstd DOUBLE PRECISION,       -- overtime hours
    iprodanwjahr DOUBLE PRECISION, sprodanwjahr DOUBLE PRECISION, -- productive hours with overtime
    inberstd DOUBLE PRECISION, snberstd DOUBLE PRECISION,     -- hours that can't be charged
    iberstdjahr DOUBLE PRECISION, sberstdjahr DOUBLE PRECISION, -- chargeable hours
    iberstdtag DOUBLE PRECISION, sberstdtag DOUBLE PRECISION, -- chargeable hours per day of attendance
    PRIMARY KEY (fnr, fjahr, nummer, monat),
    FOREIGN KEY (fnr, nummer, fjahr) REFERENCES mitarbeiter_jahre (fnr, nummer, fjahr)
);

-- Accounts, or ranges of accounts, of a financial year.
CREATE TABLE konten (
    fnr DOUBLE PRECISION NOT NULL REFERENCES firma (fnr),
    fjahr DOUBLE PRECISION NOT NULL,
    vkonto DOUBLE PRECISION NOT NULL, -- first and last account of the row
    ekonto DOUBLE PRECISION NOT NULL,
    kontenart DOUBLE PRECISION NOT NULL,       -- 1 overheads, 2 neutral expenses and income
    bezeichnung TEXT,
    ktobetrart DOUBLE PRECISION,      -- 0 an expense, anything else an income
    jwsoll DOUBLE PRECISION, jwist DOUBLE PRECISION,
    mwsoll_01 DOUBLE PRECISION, mwsoll_02 DOUBLE PRECISION, mwsoll_03 DOUBLE PRECISION, mwsoll_04 DOUBLE PRECISION,
    mwsoll_05 DOUBLE PRECISION, mwsoll_06 DOUBLE PRECISION, mwsoll_07 DOUBLE PRECISION, mwsoll_08 DOUBLE PRECISION,
    mwsoll_09 DOUBLE PRECISION, mwsoll_10 DOUBLE PRECISION, mwsoll_11 DOUBLE PRECISION, mwsoll_12 DOUBLE PRECISION,
    mwist_01 DOUBLE PRECISION, mwist_02 DOUBLE PRECISION, mwist_03 DOUBLE PRECISION, mwist_04 DOUBLE PRECISION,
    mwist_05 DOUBLE PRECISION, mwist_06 DOUBLE PRECISION, mwist_07 DOUBLE PRECISION, mwist_08 DOUBLE PRECISION,
    mwist_09 DOUBLE PRECISION, mwist_10 DOUBLE PRECISION, mwist_11 DOUBLE PRECISION, mwist_12 DOUBLE PRECISION,
    PRIMARY KEY (fnr, fjahr, vkonto)
);

-- Imputed costs of a year.
CREATE TABLE kosten (
    fnr DOUBLE PRECISION NOT NULL REFERENCES firma (fnr),
    jahr DOUBLE PRECISION NOT NULL,
    dafa DOUBLE PRECISION, dsons DOUBLE PRECISION, dwag DOUBLE PRECISION, -- depreciation, others, risks
    qm DOUBLE PRECISION, qmpreis DOUBLE PRECISION,                        -- own premises: square metres, their price
    mmietemon DOUBLE PRECISION, mmietejahr DOUBLE PRECISION,              -- rent per month, per year
    priv DOUBLE PRECISION,                                                -- private share
    upausch DOUBLE PRECISION,                                             -- flat-rate entrepreneur's wage
    zek DOUBLE PRECISION, zpzins DOUBLE PRECISION, zdmzins DOUBLE PRECISION, -- equity, interest rate, interest
    PRIMARY KEY (fnr, jahr)
);

-- Material by year, with its months: amounts, and their share of the turnover in percent.
CREATE TABLE material (
    fnr DOUBLE PRECISION NOT NULL REFERENCES firma (fnr),
    jahr DOUBLE PRECISION NOT NULL,
    smatvkpr DOUBLE PRECISION, imatvkpr DOUBLE PRECISION, -- share of the sales price
    sujmatdm DOUBLE PRECISION, iujmatdm DOUBLE PRECISION, -- amount of the year
    summatdm_su DOUBLE PRECISION, summatpr_su DOUBLE PRECISION, iummatdm_su DOUBLE PRECISION, iummatpr_su DOUBLE PRECISION,
    summatdm_01 DOUBLE PRECISION, summatdm_02 DOUBLE PRECISION, summatdm_03 DOUBLE PRECISION,
    summatdm_04 DOUBLE PRECISION, summatdm_05 DOUBLE PRECISION, summatdm_06 DOUBLE PRECISION,
    summatdm_07 DOUBLE PRECISION, summatdm_08 DOUBLE PRECISION, summatdm_09 DOUBLE PRECISION,
    summatdm_10 DOUBLE PRECISION, summatdm_11 DOUBLE PRECISION, summatdm_12 DOUBLE PRECISION,
    summatpr_01 DOUBLE PRECISION, summatpr_02 DOUBLE PRECISION, summatpr_03 DOUBLE PRECISION,
    summatpr_04 DOUBLE PRECISION, summatpr_05 DOUBLE PRECISION, summatpr_06 DOUBLE PRECISION,
    summatpr_07 DOUBLE PRECISION, summatpr_08 DOUBLE PRECISION, summatpr_09 DOUBLE PRECISION,
    summatpr_10 DOUBLE PRECISION, summatpr_11 DOUBLE PRECISION, summatpr_12 DOUBLE PRECISION,
    iummatdm_01 DOUBLE PRECISION, iummatdm_02 DOUBLE PRECISION, iummatdm_03 DOUBLE PRECISION,
    iummatdm_04 DOUBLE PRECISION, iummatdm_05 DOUBLE PRECISION, iummatdm_06 DOUBLE PRECISION,
    iummatdm_07 DOUBLE PRECISION, iummatdm_08 DOUBLE PRECISION, iummatdm_09 DOUBLE PRECISION,
    iummatdm_10 DOUBLE PRECISION, iummatdm_11 DOUBLE PRECISION, iummatdm_12 DOUBLE PRECISION,
    iummatpr_01 DOUBLE PRECISION, iummatpr_02 DOUBLE PRECISION, iummatpr_03 DOUBLE PRECISION,
    iummatpr_04 DOUBLE PRECISION, iummatpr_05 DOUBLE PRECISION, iummatpr_06 DOUBLE PRECISION,
    iummatpr_07 DOUBLE PRECISION, iummatpr_08 DOUBLE PRECISION, iummatpr_09 DOUBLE PRECISION,
    iummatpr_10 DOUBLE PRECISION, iummatpr_11 DOUBLE PRECISION, iummatpr_12 DOUBLE PRECISION,
    PRIMARY KEY (fnr, jahr)
);
