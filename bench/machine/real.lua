local cycles = tonumber(arg[1])
local level, flow, error, sum = 0.0, 1.5, 0.0, 0.0
for _ = 1, cycles do
    for i = 1, 100000 do
        error = 50.0 - level
        sum = sum + error * 0.01
        if sum > 100.0 then
            sum = 100.0
        end
        flow = error * 0.5 + sum * 0.1
        level = level + (flow - level * 0.2) / 10.0
    end
end
print("level", string.format("%.17g", level))
print("flow", string.format("%.17g", flow))
