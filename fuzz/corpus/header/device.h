typedef enum {
  NonMaskableInt_IRQn = -14,
  SysTick_IRQn = -1,
  WWDG_IRQn = 0,
  RTC_IRQn = 3,
  LATE_IRQn = 1,
  BIG_IRQn = 0xFFFFFFFF,
} IRQn_Type;
#define __CM4_REV 0x0001
#define __MPU_PRESENT 1
#define __NVIC_PRIO_BITS 4
#define __FPU_PRESENT
