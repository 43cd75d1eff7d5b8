local cycles = tonumber(arg[1])
local function limited(value, most)
    local result = value
    if value > most then
        result = most
    end
    return result
end
local function scaled(value)
    return value * 0.5 + 1.0
end
local x, y = 0, 0.0
for _ = 1, cycles do
    for i = 1, 100000 do
        x = limited(x + i, 5000) - 10
        y = scaled(y)
    end
end
print("x", x)
print("y", string.format("%.17g", y))
