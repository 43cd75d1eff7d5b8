local cycles = tonumber(arg[1])
local step, count, on = 0, 0, false
for _ = 1, cycles do
    for i = 1, 100000 do
        if step == 0 then
            step = 1
            on = true
        elseif step == 1 then
            if on then
                step = 2
            end
        elseif step == 2 or step == 3 then
            count = count + step
            step = step + 1
        elseif step >= 4 and step <= 7 then
            on = step == 5 or on
            step = step + 1
        else
            step = 0
            if count > 1000000 then
                count = 0
            end
        end
    end
end
print("step", step)
print("count", count)
