local cycles = tonumber(arg[1])
local a, b, x, i = 3, 5, 0, 0
for _ = 1, cycles do
    i = 0
    while i < 100000 do
        x = x + a + b
        if x > 1000 then
            x = x % 7
        end
        i = i + 1
    end
end
print("x", x)
print("i", i)
