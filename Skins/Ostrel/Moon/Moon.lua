-- The mean phase, counted from a new moon: good to half a day.
local NewMoon = os.time({year = 2000, month = 1, day = 6, hour = 18, min = 14})
local Month = 29.530588853
local Names = {'New moon', 'Waxing crescent', 'First quarter', 'Waxing gibbous',
               'Full moon', 'Waning gibbous', 'Last quarter', 'Waning crescent'}

local function age()
    return (os.time() - NewMoon) / 86400 % Month
end

function Days()
    return math.floor(age())
end

function Update()
    local part = age() / Month
    local lit = (1 - math.cos(2 * math.pi * part)) / 2
    return math.floor(lit * 100 + 0.5), Names[math.floor(part * 8 + 0.5) % 8 + 1]
end
